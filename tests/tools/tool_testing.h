// Helpers shared by the cntrtool unit tests: running the tool in this process, scratch files,
// and shapes read from JSON text.
#ifndef CNTRTOOL_TESTS_TOOL_TESTING_H
#define CNTRTOOL_TESTS_TOOL_TESTING_H

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "commands.h"
#include "errors.h"
#include "input.h"

namespace cntrtool_testing {

/// What one run of the tool did.
struct RunResult {
    int status;
    std::string out;
    std::string err;
};

inline RunResult runTool(const std::vector<std::string>& args) {
    std::ostringstream out, err;
    const int status = cntrtool::run(args, out, err, false);
    return RunResult{status, out.str(), err.str()};
}

/// A directory of its own for one test, removed with everything in it at the end.
class ScratchDir {
  public:
    ScratchDir() {
        char pattern[] = "/tmp/cntrtool_test_XXXXXX";
        const char* made = ::mkdtemp(pattern);
        EXPECT_NE(made, nullptr);
        path_ = made ? made : "/tmp";
    }
    ~ScratchDir() {
        const std::string command = "rm -rf '" + path_ + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;

    std::string file(const std::string& name) const { return path_ + "/" + name; }
    /// Writes `content` to `name` and returns its path.
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(file(name), std::ios::binary) << content;
        return file(name);
    }
    /// The names of the files in the directory, sorted.
    std::vector<std::string> list() const {
        std::vector<std::string> names;
        FILE* p = ::popen(("ls -A '" + path_ + "'").c_str(), "r");
        char line[512];
        while (p && std::fgets(line, sizeof line, p))
            names.emplace_back(std::string(line, std::strlen(line) - 1));
        if (p)
            ::pclose(p);
        return names;
    }

  private:
    std::string path_;
};

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

/// The shapes of a tool JSON document given as text ("x.json" in messages).
inline std::vector<cntrtool::Shape> shapesOf(const std::string& json) {
    return cntrtool::readToolJson("x.json", cntrtool::parseJson("x.json", json));
}

/// The message of the InputError that `f` throws, or "" when it throws none.
template <class F>
std::string inputErrorOf(F&& f) {
    try {
        f();
    } catch (const cntrtool::InputError& e) {
        return e.what();
    }
    return "";
}

}  // namespace cntrtool_testing

#endif
