#include "output.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "errors.h"

namespace cntrtool {

std::string formatNumber(double value, int digits) {
    if (value == 0.0)
        value = 0.0;  // negative zero prints as 0
    if (std::isnan(value))
        return "nan";  // whatever its sign bit: "-nan" would suggest an order NaN does not have
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
    return buffer;
}

double roundToDigits(double value, int digits) {
    if (!std::isfinite(value))
        return value;
    return std::strtod(formatNumber(value, digits).c_str(), nullptr);
}

TableLayout::TableLayout(std::size_t columns, std::vector<std::size_t> textColumns)
    : width_(columns, 0), text_(columns, false) {
    for (const std::size_t c : textColumns)
        text_.at(c) = true;
}

void TableLayout::fit(std::size_t column, const std::string& cell) {
    width_.at(column) = std::max(width_.at(column), cell.size());
}

void TableLayout::fit(const std::vector<std::string>& row) {
    for (std::size_t c = 0; c < row.size(); ++c)
        fit(c, row[c]);
}

std::string TableLayout::line(const std::vector<std::string>& row) const {
    std::string line;
    for (std::size_t c = 0; c < row.size(); ++c) {
        const std::string fill(width_.at(c) - row[c].size(), ' ');
        if (c > 0)
            line += "  ";
        line += text_[c] ? row[c] + fill : fill + row[c];
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    return line;
}

namespace {

[[noreturn]] void cannotWrite(const std::string& name, const std::string& why) {
    throw InputError(name, "cannot write: " + why);
}

[[noreturn]] void cannotWrite(const std::string& name) { cannotWrite(name, std::strerror(errno)); }

// Writes everything or returns false with errno set.
bool writeAll(int fd, const std::string& content) {
    const char* p = content.data();
    std::size_t left = content.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, p, left);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        p += n;
        left -= static_cast<std::size_t>(n);
    }
    return true;
}

// Removes the temporary file unless it was renamed into place.
class TemporaryFile {
  public:
    // A temporary file beside `target`; `name` is what messages call the output.
    TemporaryFile(const std::string& target, const std::string& name)
        : name_(target + ".tmp-XXXXXX") {
        std::vector<char> pattern(name_.begin(), name_.end());
        pattern.push_back('\0');
        fd_ = ::mkstemp(pattern.data());
        if (fd_ < 0)
            cannotWrite(name);
        name_.assign(pattern.data());
    }
    ~TemporaryFile() {
        if (fd_ >= 0)
            ::close(fd_);
        if (!kept_)
            ::unlink(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool write(const std::string& content) { return writeAll(fd_, content); }
    bool close() {
        const int fd = fd_;
        fd_ = -1;
        return ::close(fd) == 0;
    }
    bool renameTo(const std::string& target) {
        // mkstemp creates the file for the owner only: a replacement keeps the permissions of
        // the file it replaces, a new file gets the usual ones.
        struct stat replaced {};
        mode_t mode = 0;
        if (::stat(target.c_str(), &replaced) == 0 && S_ISREG(replaced.st_mode)) {
            mode = replaced.st_mode & 07777;
        } else {
            mode = ::umask(0);
            ::umask(mode);
            mode = 0666 & ~mode;
        }
        static_cast<void>(::chmod(name_.c_str(), mode));
        kept_ = ::rename(name_.c_str(), target.c_str()) == 0;
        return kept_;
    }

  private:
    std::string name_;
    int fd_ = -1;
    bool kept_ = false;
};

void replaceFile(const std::string& file, const std::string& content, const std::string& name) {
    TemporaryFile temporary(file, name);
    if (!temporary.write(content) || !temporary.close() || !temporary.renameTo(file))
        cannotWrite(name);
}

// Device nodes and FIFOs are opened and written as they are: replacing one by a regular file
// would break whatever else uses it.
void writeInPlace(const std::string& file, const std::string& content, const std::string& name) {
    const int fd = ::open(file.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        cannotWrite(name);
    const bool written = writeAll(fd, content);
    const int writeError = errno;
    if (::close(fd) != 0 && written)
        cannotWrite(name);
    if (!written)
        cannotWrite(name, std::strerror(writeError));
}

// Linux gives up after 40 links in a chain; so does the tool.
constexpr int kMaxLinkHops = 40;

std::string directoryOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Where the symbolic link `link` points, relative targets taken from the link's directory.
std::string linkTarget(const std::string& link, const std::string& name) {
    std::vector<char> buffer(4096);
    const ssize_t n = ::readlink(link.c_str(), buffer.data(), buffer.size());
    if (n < 0 || static_cast<std::size_t>(n) >= buffer.size())
        cannotWrite(name, n < 0 ? std::strerror(errno) : "the symbolic link's target is too long");
    const std::string target(buffer.data(), static_cast<std::size_t>(n));
    if ((!target.empty() && target[0] == '/') || link.find('/') == std::string::npos)
        return target;
    return directoryOf(link) + "/" + target;
}

// The file at the end of the chain of symbolic links that starts at `name`.
std::string followLinks(const std::string& name) {
    std::string path = name;
    for (int hops = 0; hops <= kMaxLinkHops; ++hops) {
        struct stat info {};
        if (::lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode))
            return path;
        path = linkTarget(path, name);
    }
    cannotWrite(name, std::strerror(ELOOP));
}

// The directory that will hold a new file or a replacement must exist and take new entries.
void requireWritableDirectory(const std::string& directory, const std::string& name) {
    struct stat info {};
    if (::stat(directory.c_str(), &info) != 0) {
        if (errno == ENOENT)
            cannotWrite(name, "the directory " + directory + " does not exist");
        cannotWrite(name);
    }
    if (!S_ISDIR(info.st_mode))
        cannotWrite(name, directory + " is not a directory");
    if (::access(directory.c_str(), W_OK | X_OK) != 0)
        cannotWrite(name);
}

}  // namespace

void writeFileAtomically(const std::string& path, const std::string& content) {
    replaceFile(path, content, path);
}

OutputTarget prepareOutput(const std::string& name) {
    OutputTarget target{name, name, OutputTarget::Way::replaceFile};
    if (name == "-") {
        target.way = OutputTarget::Way::standardOutput;
        return target;
    }
    struct stat info {};
    if (::stat(name.c_str(), &info) == 0) {
        if (S_ISDIR(info.st_mode))
            cannotWrite(name, "is a directory");
        if (S_ISSOCK(info.st_mode))
            cannotWrite(name, "is a socket");
        // A file the user may not write is not replaced either, though its directory would
        // allow it.
        if (::access(name.c_str(), W_OK) != 0)
            cannotWrite(name);
        if (!S_ISREG(info.st_mode)) {
            // Opened by its own name: links such as /dev/stdout end at names that only the
            // kernel can follow ("pipe:[1234]").
            target.way = OutputTarget::Way::writeInPlace;
            return target;
        }
    } else if (errno != ENOENT && errno != ENOTDIR) {
        cannotWrite(name);  // ENOTDIR: the directory check below says which part is a file
    }
    // A regular file, a new one, or the new end of a dangling link.
    target.file = followLinks(name);
    requireWritableDirectory(directoryOf(target.file), name);
    return target;
}

void writeOutput(const OutputTarget& target, const std::string& content, std::ostream& out) {
    switch (target.way) {
        case OutputTarget::Way::standardOutput:
            out.write(content.data(), static_cast<std::streamsize>(content.size()));
            out.flush();
            if (!out)
                throw InputError("standard output", "cannot write");
            return;
        case OutputTarget::Way::writeInPlace:
            writeInPlace(target.file, content, target.name);
            return;
        case OutputTarget::Way::replaceFile:
            replaceFile(target.file, content, target.name);
            return;
    }
}

Progress::Progress(std::ostream& err, const std::string& verb, std::size_t total, bool terminal)
    : err_(err),
      verb_(verb),
      total_(total),
      enabled_(total > kProgressThreshold),
      terminal_(terminal),
      start_(std::chrono::steady_clock::now()),
      lastReport_(start_) {}

void Progress::step() {
    ++done_;
    if (!enabled_ || (done_ & 0xFF) != 0)  // look at the clock every 256 items only
        return;
    const double since = std::chrono::duration<double>(std::chrono::steady_clock::now() -
                                                       lastReport_).count();
    if (since >= (terminal_ ? kRefreshInterval : kReportInterval))
        report(false);
}

void Progress::finish() {
    if (!enabled_ || finished_)
        return;
    finished_ = true;
    report(true);
}

void Progress::report(bool last) {
    const auto now = std::chrono::steady_clock::now();
    lastReport_ = now;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    const double rate = seconds > 0.0 ? static_cast<double>(done_) / seconds : 0.0;
    char line[160];
    std::snprintf(line, sizeof line, "%s %zu of %zu shapes in %.1f s (%.0f shapes/s)",
                  verb_.c_str(), done_, total_, seconds, rate);
    if (terminal_)
        err_ << '\r' << line << "\x1b[K" << (last ? "\n" : "") << std::flush;
    else
        err_ << line << '\n' << std::flush;
}

bool stderrIsTerminal() { return ::isatty(STDERR_FILENO) == 1; }

}  // namespace cntrtool
