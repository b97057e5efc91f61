#include "tools/tarn-render/script_reader.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <sstream>

namespace tarn_render {

namespace {

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

std::string quote(std::string_view text) { return "'" + std::string(text) + "'"; }

}  // namespace

std::vector<Token> split_line(std::string_view line) {
  std::vector<Token> tokens;
  std::size_t i = 0;
  while (i < line.size()) {
    if (is_space(line[i])) {
      ++i;
      continue;
    }
    if (line[i] == '#') break;
    Token token;
    if (line[i] == '"') {
      token.quoted = true;
      ++i;
      bool closed = false;
      while (i < line.size()) {
        const char c = line[i++];
        if (c == '"') {
          closed = true;
          break;
        }
        if (c == '\\' && i < line.size() && (line[i] == '"' || line[i] == '\\')) {
          token.text += line[i++];
        } else {
          token.text += c;
        }
      }
      if (!closed) throw Script_Error("a quoted string is not closed");
    } else {
      while (i < line.size() && !is_space(line[i]) && line[i] != '#' && line[i] != '"')
        token.text += line[i++];
    }
    tokens.push_back(std::move(token));
  }
  return tokens;
}

Script read_script(const std::string& path) {
  std::string contents;
  if (path == "-") {
    std::ostringstream buffer;
    buffer << std::cin.rdbuf();
    contents = buffer.str();
  } else {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Script_Error(path + ": cannot open the script: " + std::strerror(errno));
    std::ostringstream buffer;
    buffer << file.rdbuf();
    if (file.bad()) throw Script_Error(path + ": cannot read the script: " + std::strerror(errno));
    contents = buffer.str();
  }
  return parse_script(path == "-" ? "<stdin>" : path, contents);
}

Script parse_script(const std::string& name, const std::string& contents) {
  Script script;
  script.name = name;
  std::size_t start = 0;
  for (int number = 1; start < contents.size(); ++number) {
    std::size_t end = contents.find('\n', start);
    if (end == std::string::npos) end = contents.size();
    const std::string_view text(contents.data() + start, end - start);
    try {
      std::vector<Token> tokens = split_line(text);
      if (!tokens.empty()) script.lines.push_back({number, std::move(tokens)});
    } catch (const Script_Error& error) {
      throw Script_Error(script.name + ":" + std::to_string(number) + ": " + error.what());
    }
    start = end + 1;
  }
  return script;
}

bool parse_integer(std::string_view text, std::int64_t& value) {
  bool negative = false;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
    negative = text[0] == '-';
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty() || text[0] == '+' || text[0] == '-') return false;
  std::uint64_t magnitude = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  if (magnitude > std::uint64_t(std::numeric_limits<std::int64_t>::max())) return false;
  value = negative ? -std::int64_t(magnitude) : std::int64_t(magnitude);
  return true;
}

bool parse_real(std::string_view text, double& value) {
  if (!text.empty() && text[0] == '+') text.remove_prefix(1);
  if (text.empty()) return false;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::general);
  return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

Arguments Arguments::slice(std::size_t first, std::size_t count, std::string label) const {
  return Arguments(std::move(label), tokens_.subspan(first, count));
}

void Arguments::expect_count(std::size_t count, std::string_view what) const {
  if (size() != count) fail("expected " + std::string(what) + ", got " + std::to_string(size()));
}

std::size_t Arguments::find(std::string_view keyword) const {
  for (std::size_t i = 0; i < size(); ++i)
    if (!tokens_[i].quoted && tokens_[i].text == keyword) return i;
  return size();
}

void Arguments::fail(std::string_view message) const {
  throw Script_Error(label_ + ": " + std::string(message));
}

std::int64_t Arguments::integer(std::size_t i, std::string_view name, std::int64_t low,
                                std::int64_t high) const {
  std::int64_t value = 0;
  if (!parse_integer(text(i), value))
    fail(std::string(name) + ": expected an integer, got " + quote(text(i)));
  if (value < low || value > high)
    fail(std::string(name) + ": " + text(i) + " is out of range " + std::to_string(low) + ".." +
         std::to_string(high));
  return value;
}

std::int32_t Arguments::int32(std::size_t i, std::string_view name) const {
  return std::int32_t(
      integer(i, name, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

double Arguments::real(std::size_t i, std::string_view name) const {
  double value = 0;
  if (!parse_real(text(i), value)) fail(std::string(name) + ": expected a number, got " + quote(text(i)));
  return value;
}

float Arguments::real32(std::size_t i, std::string_view name) const {
  const double value = real(i, name);
  if (std::fabs(value) > double(std::numeric_limits<float>::max()))
    fail(std::string(name) + ": " + text(i) + " does not fit a float");
  return float(value);
}

bool Arguments::boolean(std::size_t i, std::string_view name) const {
  const std::string& t = text(i);
  if (t == "1" || t == "true") return true;
  if (t == "0" || t == "false") return false;
  fail(std::string(name) + ": expected 0, 1, true or false, got " + quote(t));
}

}  // namespace tarn_render
