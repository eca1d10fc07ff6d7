// The concrete archives: in memory and on a file.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include <foundation/archive.h>
#include <foundation/archive_state.h>

using xn_archive_detail::widen;

namespace {

/// A storing memory archive grows by at least twice its capacity, and a block written into it
/// leaves room for at least one part in this many of its size after it.
constexpr std::size_t kTailRoomShare = 16;

std::wstring shortfall(std::size_t needed, std::uint64_t left) {
    return L": " + std::to_wstring(needed) + L" bytes needed, " + std::to_wstring(left) + L" left";
}

}  // namespace

// ---- memory archive ----

xcMemoryArchive::xcMemoryArchive() : xcArchive(false) {
    writeHeader();
}

xcMemoryArchive::xcMemoryArchive(const std::vector<unsigned char>& bytes)
    : xcArchive(true), copy_(bytes), in_(copy_.data()), size_(copy_.size()) {
    readHeader();
}

xcMemoryArchive::xcMemoryArchive(const unsigned char* data, std::size_t size)
    : xcArchive(true), in_(data), size_(data ? size : 0) {
    readHeader();
}

xcMemoryArchive::~xcMemoryArchive() = default;

std::uint64_t xcMemoryArchive::bytesLeft() const {
    return isLoading() ? size_ - pos_ : std::numeric_limits<std::uint64_t>::max();
}

std::vector<unsigned char> xcMemoryArchive::takeBytes() {
    std::vector<unsigned char> taken;
    taken.swap(out_);
    return taken;
}

void xcMemoryArchive::writeRaw(const void* data, std::size_t n) {
    // A large block (the vertices of a shape) comes with room for the small fields that
    // usually follow it, so that they do not move the whole buffer once more.
    if (n > out_.capacity() - out_.size())
        out_.reserve(std::max(2 * out_.capacity(), out_.size() + n + n / kTailRoomShare));
    const auto* p = static_cast<const unsigned char*>(data);
    out_.insert(out_.end(), p, p + n);
}

const unsigned char* xcMemoryArchive::lendBytes(std::size_t n) {
    if (!isLoading())
        return nullptr;
    if (n > size_ - pos_)
        throw Truncated(L"archive data ends early" + shortfall(n, size_ - pos_));
    const unsigned char* lent = in_ + pos_;
    pos_ += n;
    return lent;
}

void xcMemoryArchive::readRaw(void* data, std::size_t n) {
    if (n > size_ - pos_)
        throw Truncated(L"archive data ends early" + shortfall(n, size_ - pos_));
    std::memcpy(data, in_ + pos_, n);
    pos_ += n;
}

// ---- file archive ----

struct xcFileArchive::File {
    std::FILE* f = nullptr;
    std::uint64_t size = 0;  // loading: the file's size when it was opened
    std::uint64_t pos = 0;
    ~File() {
        if (f)
            std::fclose(f);
    }
};

namespace {
std::wstring pathMessage(const char* what, const std::string& path) {
    return widen(what) + L" \"" + widen(path) + L"\"";
}
}  // namespace

xcFileArchive::xcFileArchive(const std::string& path, Direction direction)
    : xcArchive(direction == load), path_(path), file_(new File) {
    file_->f = std::fopen(path.c_str(), direction == load ? "rb" : "wb");
    if (!file_->f)
        throw FileError(pathMessage(direction == load ? "cannot open" : "cannot create", path));
    if (direction == store) {
        writeHeader();
        return;
    }
    if (std::fseek(file_->f, 0, SEEK_END) != 0)
        throw FileError(pathMessage("cannot read", path));
    const long end = std::ftell(file_->f);
    if (end < 0 || std::fseek(file_->f, 0, SEEK_SET) != 0)
        throw FileError(pathMessage("cannot read", path));
    file_->size = static_cast<std::uint64_t>(end);
    readHeader();
}

xcFileArchive::~xcFileArchive() = default;

void xcFileArchive::close() {
    if (!file_->f)
        return;
    const bool failed = (isStoring() && std::fflush(file_->f) != 0) || std::ferror(file_->f);
    const bool closeFailed = std::fclose(file_->f) != 0;
    file_->f = nullptr;
    if (failed || closeFailed)
        throw FileError(pathMessage(isStoring() ? "cannot write" : "cannot read", path_));
}

std::uint64_t xcFileArchive::bytesLeft() const {
    if (isStoring())
        return std::numeric_limits<std::uint64_t>::max();
    return file_->pos <= file_->size ? file_->size - file_->pos : 0;
}

void xcFileArchive::writeRaw(const void* data, std::size_t n) {
    if (!file_->f)
        throw FileError(pathMessage("cannot write to closed archive", path_));
    if (std::fwrite(data, 1, n, file_->f) != n)
        throw FileError(pathMessage("cannot write", path_));
    file_->pos += n;
}

void xcFileArchive::readRaw(void* data, std::size_t n) {
    if (!file_->f)
        throw FileError(pathMessage("cannot read closed archive", path_));
    if (n > bytesLeft())
        throw Truncated(pathMessage("archive data ends early in", path_) +
                        shortfall(n, bytesLeft()));
    if (std::fread(data, 1, n, file_->f) != n)
        throw FileError(pathMessage("cannot read", path_));
    file_->pos += n;
}
