#include <cctype>
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
    dispatchPart(ar, this, 0,
                 [](unsigned char version) { checkVersion(version, 0, "xcPersistent", 0); });
}

void xcPersistent::reInit() {}

void xcPersistent::loadSimple(xcArchive& ar) {
    if (ar.isLoading())
        dispatchSerialize(ar);
}

unsigned char xcPersistent::transferVersion(xcArchive& ar, unsigned char currentVersion) {
    unsigned char version = currentVersion;
    ar || version;
    return version;
}

void xcPersistent::checkVersion(unsigned char version, unsigned char newest,
                                const std::string& source, long line) {
    if (version > newest)
        throw xcArchive::UnknownVersion(source, line);
}

namespace {

struct Registration {
    std::type_index type;
    xc_Instantiator::MakeFunction make;
    int instances;  // instantiators registered for this type under this name
};

struct Registry {
    std::mutex mutex;
    std::map<std::string, Registration> byName;
    std::map<std::type_index, std::string> byType;
};

// Created by the first instantiator, so it outlives every instantiator.
Registry& registry() {
    static Registry r;
    return r;
}

bool isIdentifierChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// Removes `word` wherever it stands as a whole word (not inside an identifier such as
// "Subclass").
void eraseWord(std::string& s, const std::string& word) {
    std::size_t p = s.find(word);
    while (p != std::string::npos) {
        const bool startsWord = p == 0 || !isIdentifierChar(s[p - 1]);
        const std::size_t end = p + word.size();
        const bool endsWord = end == s.size() || !isIdentifierChar(s[end]);
        if (startsWord && endsWord) {
            s.erase(p, word.size());
        } else {
            p = end;
        }
        p = s.find(word, p);
    }
}

void replaceAll(std::string& s, const std::string& what, const std::string& with) {
    for (std::size_t p = s.find(what); p != std::string::npos; p = s.find(what, p + with.size()))
        s.replace(p, what.size(), with);
}

}  // namespace

xc_Instantiator::xc_Instantiator(const std::type_info& type, MakeFunction make)
    : type_(&type), name_(stableName(type)), owner_(false) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    const auto found = r.byName.find(name_);
    if (found == r.byName.end()) {
        r.byName.emplace(name_, Registration{std::type_index(type), make, 1});
        r.byType.emplace(std::type_index(type), name_);
        owner_ = true;
    } else if (found->second.type == std::type_index(type)) {
        ++found->second.instances;
        owner_ = true;
    }
}

xc_Instantiator::~xc_Instantiator() {
    if (!owner_)
        return;
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    const auto found = r.byName.find(name_);
    if (found == r.byName.end() || --found->second.instances > 0)
        return;
    r.byName.erase(found);
    r.byType.erase(std::type_index(*type_));
}

std::string xc_Instantiator::stableName(const std::type_info& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return stableNameFrom((status == 0 && demangled) ? demangled.get() : type.name());
}

std::string xc_Instantiator::stableNameFrom(const std::string& demangled) {
    std::string name = demangled;
    replaceAll(name, "`anonymous namespace'", "(anonymous namespace)");
    for (const char* keyword : {"class", "struct", "enum"})
        eraseWord(name, keyword);
    // A blank survives only between two identifier characters ("unsigned long").
    std::string compact;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] != ' ') {
            compact += name[i];
            continue;
        }
        std::size_t next = i;
        while (next < name.size() && name[next] == ' ')
            ++next;
        if (!compact.empty() && isIdentifierChar(compact.back()) && next < name.size() &&
            isIdentifierChar(name[next]))
            compact += ' ';
        i = next - 1;
    }
    return compact;
}

xc_Instantiator::MakeFunction xc_Instantiator::lookup(const std::string& name) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    const auto found = r.byName.find(name);
    return found == r.byName.end() ? nullptr : found->second.make;
}

std::string xc_Instantiator::registeredName(const std::type_info& type) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    const auto found = r.byType.find(std::type_index(type));
    return found == r.byType.end() ? std::string() : found->second;
}
