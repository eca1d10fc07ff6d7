// The tool's exit codes and the errors that end a run.
#ifndef CNTRTOOL_ERRORS_H
#define CNTRTOOL_ERRORS_H

#include <stdexcept>
#include <string>

namespace cntrtool {

/// Everything went well (and `check` found nothing).
constexpr int kExitOk = 0;
/// `check` found problems, or `repair` left some it could not mend.
constexpr int kExitProblems = 1;
/// Bad usage or bad input: nothing was written.
constexpr int kExitBadInput = 2;

/// A failure that ends the run with kExitBadInput; what() is the complete message.
class ToolError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The command line cannot be understood.
class UsageError : public ToolError {
  public:
    using ToolError::ToolError;
};

/// A file cannot be read, parsed or turned into shapes, or an output cannot be written.
/// The message names the file first.
class InputError : public ToolError {
  public:
    InputError(const std::string& path, const std::string& message)
        : ToolError(path + ": " + message) {}
};

}  // namespace cntrtool

#endif
