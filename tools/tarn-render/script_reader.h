// Reading a tarn-render script: lines, tokens, and the arguments of one
// command with numbers parsed and mistakes explained.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tarn_render {

// A mistake in the script or on the command line: exit status 2.
class Script_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Something outside the script went wrong (the module, an output file):
// exit status 1.
class Tool_Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Token {
  std::string text;
  bool quoted = false;
};

struct Script_Line {
  int number = 0;  // 1-based
  std::vector<Token> tokens;
};

struct Script {
  std::string name;                // as messages name it: the path given, or "<stdin>"
  std::vector<Script_Line> lines;  // only lines that hold a command
};

// Splits one line into tokens: whitespace separates, "..." quotes (with \" and
// \\ inside), and # outside quotes starts a comment. Throws Script_Error for
// a quote that is not closed.
std::vector<Token> split_line(std::string_view line);

// Reads and splits a whole script; "-" reads standard input. Throws
// Script_Error when the file can't be read or a line can't be split; the
// message then carries the file name (and line number).
Script read_script(const std::string& path);
// The same for a script in hand; name is what messages call it.
Script parse_script(const std::string& name, const std::string& contents);

// Number syntax shared by all commands: an optional sign, then decimal digits
// or 0x and hex digits.
bool parse_integer(std::string_view text, std::int64_t& value);
// A finite decimal floating-point number (nan and inf are refused).
bool parse_real(std::string_view text, double& value);

// The arguments of one command, labelled for messages ("window",
// "set colors.color", "draw_dci_polytriangle"). Every failure throws
// Script_Error with a message that starts with the label.
class Arguments {
 public:
  Arguments(std::string label, std::span<const Token> tokens) : label_(std::move(label)), tokens_(tokens) {}

  const std::string& label() const { return label_; }
  std::size_t size() const { return tokens_.size(); }
  const Token& token(std::size_t i) const { return tokens_[i]; }
  const std::string& text(std::size_t i) const { return tokens_[i].text; }

  // The tokens [first, first + count), under another label.
  Arguments slice(std::size_t first, std::size_t count, std::string label) const;
  Arguments from(std::size_t first, std::string label) const { return slice(first, size() - first, label); }

  // "LABEL: expected WHAT, got N" unless there are exactly `count` tokens.
  void expect_count(std::size_t count, std::string_view what) const;
  // Index of the first token equal to `keyword` (unquoted), or size().
  std::size_t find(std::string_view keyword) const;

  [[noreturn]] void fail(std::string_view message) const;

  // Token i as a number; `name` says what it is in messages ("W", "point 2 y").
  std::int64_t integer(std::size_t i, std::string_view name, std::int64_t low, std::int64_t high) const;
  std::int32_t int32(std::size_t i, std::string_view name) const;
  double real(std::size_t i, std::string_view name) const;
  float real32(std::size_t i, std::string_view name) const;
  bool boolean(std::size_t i, std::string_view name) const;

 private:
  std::string label_;
  std::span<const Token> tokens_;
};

}  // namespace tarn_render
