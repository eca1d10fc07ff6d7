#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <typeindex>

#include <cxxabi.h>

#include <foundation/archive.h>
#include <foundation/persistent.h>

xcPersistent::~xcPersistent() = default;

void xcPersistent::dispatchSerialize(xcArchive& ar) {
    const xcPersistent* self = this;
    if (haveVisited(ar, self, sizeof(xcPersistent))) return;
    unsigned char version = 0;
    ar || version;
    if (version != 0) throw xcArchive::UnknownVersion("xcPersistent", 0);
    setVisited(ar, self, sizeof(xcPersistent));
}

void xcPersistent::reInit() {}

void xcPersistent::loadSimple(xcArchive& ar) {
    if (ar.isLoading()) dispatchSerialize(ar);
}

namespace {
struct Registry {
    std::mutex mutex;
    std::map<std::string, xc_Instantiator::MakeFunction> byName;
    std::map<std::type_index, std::string> byType;
};

Registry& registry() {
    static Registry r;
    return r;
}

void eraseAll(std::string& s, const std::string& what) {
    for (std::size_t p = s.find(what); p != std::string::npos; p = s.find(what, p)) s.erase(p, what.size());
}
}  // namespace

xc_Instantiator::xc_Instantiator(const std::type_info& type, MakeFunction make) {
    Registry& r = registry();
    const std::string name = stableName(type);
    std::lock_guard<std::mutex> lock(r.mutex);
    r.byName.emplace(name, make);
    r.byType.emplace(std::type_index(type), name);
}

std::string xc_Instantiator::stableName(const std::type_info& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    std::string name = (status == 0 && demangled) ? demangled.get() : type.name();
    eraseAll(name, "class ");
    eraseAll(name, "struct ");
    eraseAll(name, " ");
    return name;
}

xc_Instantiator::MakeFunction xc_Instantiator::lookup(const std::string& name) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    const auto it = r.byName.find(name);
    return it == r.byName.end() ? nullptr : it->second;
}

std::string xc_Instantiator::registeredName(const std::type_info& type) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    const auto it = r.byType.find(std::type_index(type));
    return it == r.byType.end() ? std::string() : it->second;
}
