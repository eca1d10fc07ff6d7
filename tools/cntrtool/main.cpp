// cntrtool: measures, checks, repairs and renders polygon files.
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"
#include "errors.h"
#include "output.h"

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    const int status = cntrtool::run(args, std::cout, std::cerr, cntrtool::stderrIsTerminal());
    std::cout.flush();
    return std::cout.good() ? status : cntrtool::kExitBadInput;
}
