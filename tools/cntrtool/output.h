// Writing results: number formatting, outputs that replace only what they may, progress reports.
#ifndef CNTRTOOL_OUTPUT_H
#define CNTRTOOL_OUTPUT_H

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace cntrtool {

/// Significant digits of the numbers in tables (readable). JSON reports write each double in the
/// shortest form that reads back as the same double, unless --digits asks for fewer.
constexpr int kTableDigits = 6;
/// The range of --digits: 17 significant digits are enough for every double to read back.
constexpr int kMinDigits = 1;
constexpr int kMaxDigits = 17;

/// `value` printed with %.<digits>g in the C locale; negative zero prints as 0, every NaN as nan.
std::string formatNumber(double value, int digits);
/// `value` rounded to `digits` significant digits (what formatNumber prints), for JSON reports.
double roundToDigits(double value, int digits);

/// The layout of an aligned table: each column as wide as its widest cell, two spaces between
/// columns, text columns aligned left and the others (numbers) right. Cells are measured first
/// (fit) and laid out afterwards (line), so that a table can be printed without holding it.
class TableLayout {
  public:
    /// A table of `columns` columns; `textColumns` lists those aligned left.
    TableLayout(std::size_t columns, std::vector<std::size_t> textColumns);
    /// Widens column `column` to hold `cell`.
    void fit(std::size_t column, const std::string& cell);
    /// Widens every column to hold the cells of `row` (one per column).
    void fit(const std::vector<std::string>& row);
    /// The row laid out, without trailing spaces or a newline.
    std::string line(const std::vector<std::string>& row) const;

  private:
    std::vector<std::size_t> width_;
    std::vector<bool> text_;
};

/// Writes `content` to a temporary file beside `path` and renames it to `path` once complete,
/// so `path` is either left as it was or holds the whole content. Throws InputError naming
/// `path` when the file cannot be written.
void writeFileAtomically(const std::string& path, const std::string& content);

/// Where a command writes its result, decided from the -o argument before any work is done.
struct OutputTarget {
    enum class Way {
        /// "-": the content goes to the tool's standard output.
        standardOutput,
        /// A regular file, or none yet: a temporary file beside it is renamed onto it.
        replaceFile,
        /// A device node or a FIFO: written to directly, never replaced.
        writeInPlace
    };
    /// The name given on the command line, for messages.
    std::string name;
    /// The file that receives the content: `name` with its symbolic links followed (the end of
    /// a dangling link does not exist yet).
    std::string file;
    Way way = Way::replaceFile;
};

/// How `name` is to be written: "-" is standard output; symbolic links are followed to the
/// file they end at; an existing device node or FIFO is written in place; anything else is a
/// file replaced whole. Throws InputError naming `name` when it cannot be written: it is a
/// directory or a socket, its directory does not exist or may not be written, or it exists
/// and may not be written.
OutputTarget prepareOutput(const std::string& name);

/// Writes `content` to `target` (standard output being `out`). Throws InputError naming the
/// target when it cannot be written; a replaced file is then left as it was.
void writeOutput(const OutputTarget& target, const std::string& content, std::ostream& out);

/// A count and a rate on stderr for long runs: refreshed in place on a terminal, plain lines
/// (at most one a second) otherwise, and a closing line. Silent for runs of at most
/// kProgressThreshold items.
class Progress {
  public:
    /// Runs over more items than this report their progress.
    static constexpr std::size_t kProgressThreshold = 10000;
    /// Seconds between two reports.
    static constexpr double kReportInterval = 1.0;
    /// Seconds between two refreshes on a terminal.
    static constexpr double kRefreshInterval = 0.1;

    /// `verb` names the work ("measured"); `terminal` whether `err` is a terminal.
    Progress(std::ostream& err, const std::string& verb, std::size_t total, bool terminal);
    /// Counts one item done.
    void step();
    /// Writes the closing line (once).
    void finish();

  private:
    void report(bool last);

    std::ostream& err_;
    std::string verb_;
    std::size_t total_;
    std::size_t done_ = 0;
    bool enabled_;
    bool terminal_;
    bool finished_ = false;
    std::chrono::steady_clock::time_point start_;
    std::chrono::steady_clock::time_point lastReport_;
};

/// Whether the standard error stream is a terminal.
bool stderrIsTerminal();

}  // namespace cntrtool

#endif
