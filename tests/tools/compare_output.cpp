// Compares a tool's output with an expected file token by token: numbers within a tolerance,
// everything else exactly. Layout (spaces, alignment) and JSON punctuation are ignored; a "*"
// in the expected file matches any one token (a value the library leaves undefined, such as the
// rotation of a circle).
//
// usage: compare_output EXPECTED ACTUAL
// Exit status 0 when they match, 1 with a description of the first difference otherwise.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

// Numbers match when |actual - expected| <= kAbsoluteTolerance + kRelativeTolerance |expected|:
// tables print 6 significant digits, and values that are 0 by hand come out as rounding noise.
constexpr double kRelativeTolerance = 1e-5;
constexpr double kAbsoluteTolerance = 1e-9;

struct Token {
    std::string text;
    int line;
};

std::vector<Token> tokens(const std::string& path) {
    std::ifstream in(path);
    if (!in) {
        std::fprintf(stderr, "compare_output: cannot read %s\n", path.c_str());
        std::exit(2);
    }
    std::vector<Token> out;
    std::string lineText;
    for (int line = 1; std::getline(in, lineText); ++line) {
        for (char& c : lineText)
            if (std::string("[]{},:\"").find(c) != std::string::npos)
                c = ' ';
        std::istringstream words(lineText);
        std::string w;
        while (words >> w)
            out.push_back(Token{w, line});
    }
    return out;
}

bool asNumber(const std::string& s, double& value) {
    char* end = nullptr;
    value = std::strtod(s.c_str(), &end);
    return !s.empty() && end == s.c_str() + s.size();
}

bool matches(const std::string& expected, const std::string& actual) {
    if (expected == "*" || expected == actual)
        return true;
    double e = 0.0, a = 0.0;
    if (!asNumber(expected, e) || !asNumber(actual, a))
        return false;
    return std::fabs(a - e) <= kAbsoluteTolerance + kRelativeTolerance * std::fabs(e);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: compare_output EXPECTED ACTUAL\n");
        return 2;
    }
    const std::vector<Token> expected = tokens(argv[1]);
    const std::vector<Token> actual = tokens(argv[2]);
    const std::size_t n = std::min(expected.size(), actual.size());
    for (std::size_t i = 0; i < n; ++i) {
        if (!matches(expected[i].text, actual[i].text)) {
            std::fprintf(stderr, "token %zu differs: expected '%s' (line %d), got '%s' (line %d)\n",
                         i, expected[i].text.c_str(), expected[i].line, actual[i].text.c_str(),
                         actual[i].line);
            return 1;
        }
    }
    if (expected.size() != actual.size()) {
        std::fprintf(stderr, "expected %zu tokens, got %zu\n", expected.size(), actual.size());
        return 1;
    }
    return 0;
}
