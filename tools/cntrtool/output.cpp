#include "output.h"

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

namespace {

// Removes the temporary file unless it was renamed into place.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& target) : name_(target + ".tmp-XXXXXX") {
        std::vector<char> pattern(name_.begin(), name_.end());
        pattern.push_back('\0');
        fd_ = ::mkstemp(pattern.data());
        if (fd_ < 0)
            throw InputError(target, std::string("cannot write: ") + std::strerror(errno));
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

    // Writes everything or returns false with errno set.
    bool write(const std::string& content) {
        const char* p = content.data();
        std::size_t left = content.size();
        while (left > 0) {
            const ssize_t n = ::write(fd_, p, left);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return false;
            p += n;
            left -= static_cast<std::size_t>(n);
        }
        return true;
    }
    bool close() {
        const int fd = fd_;
        fd_ = -1;
        return ::close(fd) == 0;
    }
    bool renameTo(const std::string& target) {
        // mkstemp creates the file for the owner only; give it the usual permissions.
        const mode_t mask = ::umask(0);
        ::umask(mask);
        static_cast<void>(::chmod(name_.c_str(), 0666 & ~mask));
        kept_ = ::rename(name_.c_str(), target.c_str()) == 0;
        return kept_;
    }

  private:
    std::string name_;
    int fd_ = -1;
    bool kept_ = false;
};

}  // namespace

void writeFileAtomically(const std::string& path, const std::string& content) {
    TemporaryFile temporary(path);
    if (!temporary.write(content) || !temporary.close() || !temporary.renameTo(path))
        throw InputError(path, std::string("cannot write: ") + std::strerror(errno));
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
