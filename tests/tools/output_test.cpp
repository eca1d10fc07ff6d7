#include "output.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <functional>
#include <regex>
#include <sstream>
#include <thread>

#include <grp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tool_testing.h"

using cntrtool::formatNumber;
using cntrtool::Progress;
using cntrtool::roundToDigits;
using cntrtool::writeFileAtomically;
using cntrtool_testing::inputErrorOf;
using cntrtool_testing::readFile;
using cntrtool_testing::ScratchDir;

TEST(Output, NumberFormats) {
    EXPECT_EQ(formatNumber(-0.0, 6), "0");
    EXPECT_EQ(formatNumber(1.0 / 3.0, 6), "0.333333");
    EXPECT_EQ(formatNumber(2.0 / 3.0, 9), "0.666666667");
    EXPECT_EQ(formatNumber(1e-20, 6), "1e-20");
    EXPECT_EQ(formatNumber(1234567.0, 6), "1.23457e+06");
    EXPECT_EQ(formatNumber(std::nan(""), 6), "nan");
    EXPECT_EQ(formatNumber(-std::nan(""), 6), "nan");  // a NaN has no sign to show
    EXPECT_EQ(formatNumber(-INFINITY, 6), "-inf");
}

TEST(Output, RoundingToDigits) {
    EXPECT_EQ(roundToDigits(1.0 / 3.0, 9), 0.333333333);
    EXPECT_EQ(roundToDigits(-2.5, 9), -2.5);
    EXPECT_TRUE(std::isinf(roundToDigits(INFINITY, 9)));
}

TEST(Output, TableLayoutAlignsTextLeftAndNumbersRight) {
    cntrtool::TableLayout layout(3, {1});
    layout.fit({"index", "kind", "n"});
    layout.fit({"7", "regionset", "12345"});
    layout.fit(0, "123456");  // one cell alone widens its column
    EXPECT_EQ(layout.line({"index", "kind", "n"}), " index  kind           n");
    EXPECT_EQ(layout.line({"7", "regionset", "12345"}), "     7  regionset  12345");
    // Trailing spaces of a short last text cell are dropped.
    cntrtool::TableLayout textLast(2, {1});
    textLast.fit({"1", "boundary"});
    EXPECT_EQ(textLast.line({"1", "in"}), "1  in");
}

TEST(Output, AtomicWriteCreatesAndReplaces) {
    ScratchDir dir;
    const std::string path = dir.file("out.txt");
    writeFileAtomically(path, "first");
    EXPECT_EQ(readFile(path), "first");
    writeFileAtomically(path, "second, longer");
    EXPECT_EQ(readFile(path), "second, longer");
    EXPECT_EQ(dir.list(), std::vector<std::string>{"out.txt"});  // no temporary left
}

TEST(Output, AtomicWriteFailureNamesThePathAndLeavesNothing) {
    ScratchDir dir;
    const std::string path = dir.file("missing/out.txt");
    EXPECT_EQ(inputErrorOf([&] { writeFileAtomically(path, "x"); }),
              path + ": cannot write: No such file or directory");  // from the file system
    EXPECT_TRUE(dir.list().empty());
}

TEST(Output, ProgressIsSilentForShortRuns) {
    std::ostringstream err;
    Progress p(err, "measured", Progress::kProgressThreshold, false);
    for (std::size_t i = 0; i < Progress::kProgressThreshold; ++i)
        p.step();
    p.finish();
    EXPECT_EQ(err.str(), "");
}

TEST(Output, ProgressOfLongRunsEndsWithACountAndARate) {
    std::ostringstream err;
    const std::size_t n = Progress::kProgressThreshold + 1;
    Progress p(err, "measured", n, false);
    for (std::size_t i = 0; i < n; ++i)
        p.step();
    p.finish();
    p.finish();  // once only
    const std::string text = err.str();
    EXPECT_TRUE(std::regex_search(
        text, std::regex("(^|\n)measured 10001 of 10001 shapes in [0-9.]+ s \\([0-9]+ shapes/s\\)\n$")))
        << text;
    EXPECT_EQ(text.find('\r'), std::string::npos);  // plain lines when not on a terminal
}

TEST(Output, ProgressOnATerminalRefreshesInPlace) {
    std::ostringstream err;
    const std::size_t n = Progress::kProgressThreshold + 1;
    Progress p(err, "drew", n, true);
    for (std::size_t i = 0; i < n; ++i)
        p.step();
    p.finish();
    const std::string text = err.str();
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.front(), '\r');
    EXPECT_EQ(text.back(), '\n');
    EXPECT_NE(text.find("drew 10001 of 10001 shapes"), std::string::npos);
}

// ---- where outputs go: standard output, devices, FIFOs, links, directories, permissions ----

namespace {

using cntrtool::OutputTarget;
using cntrtool::prepareOutput;
using cntrtool::writeOutput;

// Writes `content` to `name` as a command does; the error message, or "" when it succeeded.
std::string writeErrorOf(const std::string& name, const std::string& content) {
    std::ostringstream out;
    return inputErrorOf([&] { writeOutput(prepareOutput(name), content, out); });
}

mode_t fileTypeOf(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0 ? (info.st_mode & S_IFMT) : 0;
}

bool isRoot() { return ::geteuid() == 0; }

// Runs `f` in a child process as the unprivileged user and group 65534 (this process being
// root) and returns what it returns ("setuid failed" when the change of user was refused).
std::string resultAsUnprivileged(const std::function<std::string()>& f) {
    int fds[2];
    if (::pipe(fds) != 0)
        return "pipe failed";
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(fds[0]);
        std::string message;
        if (::setgroups(0, nullptr) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0)
            message = "setuid failed";
        else
            message = f();
        const ssize_t written = ::write(fds[1], message.data(), message.size());
        ::_exit(written == static_cast<ssize_t>(message.size()) ? 0 : 1);
    }
    ::close(fds[1]);
    std::string message;
    char buffer[256];
    for (ssize_t n; (n = ::read(fds[0], buffer, sizeof buffer)) > 0;)
        message.append(buffer, static_cast<std::size_t>(n));
    ::close(fds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? message : "child failed";
}

// The message of the InputError that `f` throws as the unprivileged user ("" when none).
std::string inputErrorAsUnprivileged(const std::function<void()>& f) {
    return resultAsUnprivileged([&f] { return inputErrorOf(f); });
}

// The scratch directory opened to every user, for the runs as the unprivileged user.
void openToEveryone(const ScratchDir& dir) { ASSERT_EQ(::chmod(dir.file("").c_str(), 0777), 0); }

}  // namespace

TEST(Output, DashIsStandardOutput) {
    const OutputTarget target = prepareOutput("-");
    EXPECT_EQ(target.way, OutputTarget::Way::standardOutput);
    std::ostringstream out;
    writeOutput(target, "content", out);
    EXPECT_EQ(out.str(), "content");
}

TEST(Output, FailingStandardOutputIsAnError) {
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(inputErrorOf([&] { writeOutput(prepareOutput("-"), "x", out); }),
              "standard output: cannot write");
}

TEST(Output, DevNullIsWrittenInPlace) {
    EXPECT_EQ(prepareOutput("/dev/null").way, OutputTarget::Way::writeInPlace);
    EXPECT_EQ(writeErrorOf("/dev/null", "content"), "");
    EXPECT_EQ(fileTypeOf("/dev/null"), static_cast<mode_t>(S_IFCHR));
}

TEST(Output, DevFullReportsTheFullDeviceAndStaysADevice) {
    EXPECT_EQ(writeErrorOf("/dev/full", "content"),
              "/dev/full: cannot write: No space left on device");
    EXPECT_EQ(fileTypeOf("/dev/full"), static_cast<mode_t>(S_IFCHR));
}

TEST(Output, DeviceNodeInADirectoryIsWrittenInPlace) {
    ScratchDir dir;
    const std::string node = dir.file("null");
    // Character device 1, 3 is the null device on Linux.
    if (::mknod(node.c_str(), S_IFCHR | 0666, makedev(1, 3)) != 0)
        GTEST_SKIP() << "cannot make a device node here (" << std::strerror(errno)
                     << "): needs root outside a restricting container";
    EXPECT_EQ(writeErrorOf(node, "content"), "");
    EXPECT_EQ(fileTypeOf(node), static_cast<mode_t>(S_IFCHR));
    EXPECT_EQ(dir.list(), std::vector<std::string>{"null"});
}

TEST(Output, FifoIsWrittenInPlace) {
    ScratchDir dir;
    const std::string fifo = dir.file("pipe");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    std::string received;
    std::thread reader([&] { received = readFile(fifo); });
    const std::string error = writeErrorOf(fifo, "through the pipe");
    reader.join();
    EXPECT_EQ(error, "");
    EXPECT_EQ(received, "through the pipe");
    EXPECT_EQ(fileTypeOf(fifo), static_cast<mode_t>(S_IFIFO));
    EXPECT_EQ(dir.list(), std::vector<std::string>{"pipe"});
}

TEST(Output, SymlinkIsWrittenThroughToItsTarget) {
    ScratchDir dir;
    const std::string target = dir.write("target.txt", "old");
    ASSERT_EQ(::symlink("target.txt", dir.file("link").c_str()), 0);
    EXPECT_EQ(prepareOutput(dir.file("link")).file, dir.file("target.txt"));
    EXPECT_EQ(writeErrorOf(dir.file("link"), "new"), "");
    EXPECT_EQ(fileTypeOf(dir.file("link")), static_cast<mode_t>(S_IFLNK));
    EXPECT_EQ(readFile(target), "new");
    EXPECT_EQ(dir.list(), (std::vector<std::string>{"link", "target.txt"}));
}

TEST(Output, ChainOfRelativeLinksIsFollowedFromEachLinksDirectory) {
    ScratchDir dir;
    ASSERT_EQ(::mkdir(dir.file("a").c_str(), 0755), 0);
    ASSERT_EQ(::mkdir(dir.file("b").c_str(), 0755), 0);
    dir.write("b/file.txt", "old");
    // first -> a/second -> ../b/file.txt, each relative to the link's own directory.
    ASSERT_EQ(::symlink("../b/file.txt", dir.file("a/second").c_str()), 0);
    ASSERT_EQ(::symlink("a/second", dir.file("first").c_str()), 0);
    EXPECT_EQ(writeErrorOf(dir.file("first"), "new"), "");
    EXPECT_EQ(readFile(dir.file("b/file.txt")), "new");
    EXPECT_EQ(fileTypeOf(dir.file("first")), static_cast<mode_t>(S_IFLNK));
    EXPECT_EQ(fileTypeOf(dir.file("a/second")), static_cast<mode_t>(S_IFLNK));
}

TEST(Output, DanglingSymlinkCreatesItsTarget) {
    ScratchDir dir;
    ASSERT_EQ(::symlink("made.txt", dir.file("link").c_str()), 0);
    EXPECT_EQ(writeErrorOf(dir.file("link"), "content"), "");
    EXPECT_EQ(fileTypeOf(dir.file("link")), static_cast<mode_t>(S_IFLNK));
    EXPECT_EQ(readFile(dir.file("made.txt")), "content");
    EXPECT_EQ(dir.list(), (std::vector<std::string>{"link", "made.txt"}));
}

TEST(Output, DanglingSymlinkIntoAMissingDirectoryIsRefused) {
    ScratchDir dir;
    ASSERT_EQ(::symlink("gone/made.txt", dir.file("link").c_str()), 0);
    EXPECT_EQ(writeErrorOf(dir.file("link"), "x"),
              dir.file("link") + ": cannot write: the directory " + dir.file("gone") +
                  " does not exist");
    EXPECT_EQ(dir.list(), std::vector<std::string>{"link"});
}

TEST(Output, SymlinkLoopIsRefused) {
    ScratchDir dir;
    ASSERT_EQ(::symlink("b", dir.file("a").c_str()), 0);
    ASSERT_EQ(::symlink("a", dir.file("b").c_str()), 0);
    EXPECT_EQ(writeErrorOf(dir.file("a"), "x"),
              dir.file("a") + ": cannot write: " + std::strerror(ELOOP));
}

TEST(Output, SymlinkToADeviceWritesTheDevice) {
    ScratchDir dir;
    ASSERT_EQ(::symlink("/dev/null", dir.file("link").c_str()), 0);
    EXPECT_EQ(prepareOutput(dir.file("link")).way, OutputTarget::Way::writeInPlace);
    EXPECT_EQ(writeErrorOf(dir.file("link"), "x"), "");
    EXPECT_EQ(fileTypeOf("/dev/null"), static_cast<mode_t>(S_IFCHR));
}

TEST(Output, DirectoryIsRefusedAsADirectory) {
    ScratchDir dir;
    ASSERT_EQ(::mkdir(dir.file("sub").c_str(), 0755), 0);
    ASSERT_EQ(::symlink("sub", dir.file("link").c_str()), 0);
    EXPECT_EQ(writeErrorOf(dir.file("sub"), "x"), dir.file("sub") + ": cannot write: is a directory");
    EXPECT_EQ(writeErrorOf(dir.file("link"), "x"),
              dir.file("link") + ": cannot write: is a directory");
    EXPECT_EQ(dir.list(), (std::vector<std::string>{"link", "sub"}));
}

TEST(Output, MissingDirectoryIsRefusedBeforeWriting) {
    ScratchDir dir;
    EXPECT_EQ(inputErrorOf([&] { prepareOutput(dir.file("missing/out.txt")); }),
              dir.file("missing/out.txt") + ": cannot write: the directory " +
                  dir.file("missing") + " does not exist");
}

TEST(Output, FileInPlaceOfADirectoryIsRefused) {
    ScratchDir dir;
    dir.write("plain", "");
    EXPECT_EQ(inputErrorOf([&] { prepareOutput(dir.file("plain/out.txt")); }),
              dir.file("plain/out.txt") + ": cannot write: " + dir.file("plain") +
                  " is not a directory");
}

TEST(Output, SocketIsRefused) {
    ScratchDir dir;
    const std::string path = dir.file("socket");
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(fd, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::strcpy(address.sun_path, path.c_str());
    ASSERT_EQ(::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(writeErrorOf(path, "x"), path + ": cannot write: is a socket");
    EXPECT_EQ(fileTypeOf(path), static_cast<mode_t>(S_IFSOCK));
    ::close(fd);
}

TEST(Output, ReadOnlyFileIsReplacedByRootOnly) {
    ScratchDir dir;
    openToEveryone(dir);
    const std::string path = dir.write("locked.txt", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    if (!isRoot()) {
        EXPECT_EQ(writeErrorOf(path, "new"), path + ": cannot write: Permission denied");
        EXPECT_EQ(readFile(path), "old");
        GTEST_SKIP() << "not root: root's replacing of a read-only file is not tested";
    }
    // Another user may not replace the file, though the directory would let it rename.
    EXPECT_EQ(inputErrorAsUnprivileged([&] { prepareOutput(path); }),
              path + ": cannot write: Permission denied");
    EXPECT_EQ(readFile(path), "old");
    // Root may write any file; the tool does not second-guess that. The replacement stays
    // read-only.
    EXPECT_EQ(writeErrorOf(path, "new"), "");
    EXPECT_EQ(readFile(path), "new");
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0444u);
}

TEST(Output, ReplacementKeepsThePermissionsOfTheFileItReplaces) {
    ScratchDir dir;
    const std::string path = dir.write("script.sh", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0750), 0);
    EXPECT_EQ(writeErrorOf(path, "new"), "");
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0750u);
    EXPECT_EQ(readFile(path), "new");
}

TEST(Output, ReadOnlyDirectoryTakesNoNewFileExceptFromRoot) {
    ScratchDir dir;
    openToEveryone(dir);
    ASSERT_EQ(::mkdir(dir.file("locked").c_str(), 0555), 0);
    ASSERT_EQ(::chmod(dir.file("locked").c_str(), 0555), 0);  // whatever the umask
    const std::string path = dir.file("locked/out.txt");
    if (!isRoot()) {
        EXPECT_EQ(writeErrorOf(path, "x"), path + ": cannot write: Permission denied");
        GTEST_SKIP() << "not root: root's writing into a read-only directory is not tested";
    }
    EXPECT_EQ(inputErrorAsUnprivileged([&] { prepareOutput(path); }),
              path + ": cannot write: Permission denied");
    EXPECT_EQ(writeErrorOf(path, "x"), "");
    EXPECT_EQ(readFile(path), "x");
}

TEST(Output, ReadOnlyDirectoryRefusesAReplacementToo) {
    // The replacement is a new file beside the target: a file that could be written in place
    // is still refused when its directory takes no new entries.
    ScratchDir dir;
    openToEveryone(dir);
    ASSERT_EQ(::mkdir(dir.file("locked").c_str(), 0777), 0);
    const std::string path = dir.write("locked/out.txt", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(::chmod(dir.file("locked").c_str(), 0555), 0);
    const auto attempt = [&] { prepareOutput(path); };
    const std::string error = isRoot() ? inputErrorAsUnprivileged(attempt) : inputErrorOf(attempt);
    EXPECT_EQ(error, path + ": cannot write: Permission denied");
    EXPECT_EQ(readFile(path), "old");
}

TEST(Output, UnprivilegedUserWritesTheSameWays) {
    // The cases that do not depend on permissions, run again as another user than root.
    if (!isRoot())
        GTEST_SKIP() << "not root: the other tests already ran as an unprivileged user";
    ScratchDir dir;
    openToEveryone(dir);
    ASSERT_EQ(::symlink("made.txt", dir.file("dangling").c_str()), 0);
    ASSERT_EQ(::symlink("/dev/null", dir.file("null").c_str()), 0);
    ASSERT_EQ(::mkdir(dir.file("sub").c_str(), 0777), 0);
    const std::string results = resultAsUnprivileged([&] {
        std::string r;
        for (const std::string& name :
             {dir.file("new.txt"), dir.file("dangling"), dir.file("null"), std::string("/dev/null"),
              std::string("/dev/full"), dir.file("sub")})
            r += "[" + writeErrorOf(name, "content") + "]";
        return r + readFile(dir.file("new.txt")) + "|" + readFile(dir.file("made.txt"));
    });
    EXPECT_EQ(results, "[][][][][/dev/full: cannot write: No space left on device][" +
                           dir.file("sub") + ": cannot write: is a directory]content|content");
    EXPECT_EQ(fileTypeOf(dir.file("dangling")), static_cast<mode_t>(S_IFLNK));
    EXPECT_EQ(fileTypeOf("/dev/null"), static_cast<mode_t>(S_IFCHR));
}
