#include "sim/ini_profile_file.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include "model/text_util.h"
#include "ports/profile_text.h"
#include "sim/replace_file.h"

namespace quorvex {

namespace {

namespace fs = std::filesystem;

bool Blank(char c) { return c == ' ' || c == '\t'; }

std::string_view TrimBlanks(std::string_view s) {
  std::size_t b = 0, e = s.size();
  while (b < e && Blank(s[b])) ++b;
  while (e > b && Blank(s[e - 1])) --e;
  return s.substr(b, e - b);
}

// A line cannot hold a line break: it becomes a blank.
std::string OneLine(std::string_view s) {
  std::string out(s);
  for (char& c : out)
    if (c == '\r' || c == '\n') c = ' ';
  return out;
}

struct IniLine {
  enum class Kind { kOther, kSection, kKey };
  Kind kind = Kind::kOther;
  std::string text;   // as it stands in the file, without the line end
  std::string name;   // section or key name, blanks trimmed
  std::string value;  // keys: everything after the first "=", raw
};

IniLine Classify(std::string text) {
  IniLine line;
  std::string_view t = text;
  // A UTF-8 mark at the start (editors add it) is no part of the name.
  if (t.substr(0, 3) == "\xEF\xBB\xBF") t.remove_prefix(3);
  t = TrimBlanks(t);
  if (!t.empty() && t.front() == '[') {
    std::size_t close = t.find(']');
    line.kind = IniLine::Kind::kSection;
    line.name = TrimBlanks(
        t.substr(1, close == std::string_view::npos ? t.npos : close - 1));
  } else if (!t.empty() && t.front() != ';') {
    std::size_t eq = t.find('=');
    if (eq != std::string_view::npos && !TrimBlanks(t.substr(0, eq)).empty()) {
      line.kind = IniLine::Kind::kKey;
      line.name = TrimBlanks(t.substr(0, eq));
      line.value = t.substr(eq + 1);
    }
  }
  line.text = std::move(text);
  return line;
}

enum class ReadResult { kMissing, kRead, kUnreadable };

ReadResult ReadWhole(const fs::path& path, std::string* contents) {
  std::error_code ec;
  auto status = fs::status(path, ec);
  if (!fs::exists(status)) return ReadResult::kMissing;
  if (!fs::is_regular_file(status)) return ReadResult::kUnreadable;
  std::ifstream in(path, std::ios::binary);
  if (!in) return ReadResult::kUnreadable;
  std::ostringstream buf;
  buf << in.rdbuf();
  if (in.bad()) return ReadResult::kUnreadable;
  *contents = std::move(buf).str();
  return ReadResult::kRead;
}

std::vector<IniLine> SplitLines(const std::string& contents) {
  std::vector<IniLine> lines;
  std::size_t pos = 0;
  while (pos < contents.size()) {
    std::size_t nl = contents.find('\n', pos);
    std::size_t end = nl == std::string::npos ? contents.size() : nl;
    std::size_t stop = end;
    if (stop > pos && contents[stop - 1] == '\r') --stop;
    lines.push_back(Classify(contents.substr(pos, stop - pos)));
    pos = end + 1;
  }
  return lines;
}

std::string JoinLines(const std::vector<IniLine>& lines) {
  std::string out;
  for (const IniLine& l : lines) out.append(l.text).append("\r\n");
  return out;
}

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

std::size_t FindSection(const std::vector<IniLine>& lines,
                        std::string_view name) {
  for (std::size_t i = 0; i < lines.size(); ++i)
    if (lines[i].kind == IniLine::Kind::kSection &&
        EqualsIgnoreCase(lines[i].name, name))
      return i;
  return kNone;
}

// One past the last line of the section whose header is at `header`.
std::size_t SectionEnd(const std::vector<IniLine>& lines, std::size_t header) {
  std::size_t i = header + 1;
  while (i < lines.size() && lines[i].kind != IniLine::Kind::kSection) ++i;
  return i;
}

std::size_t FindKey(const std::vector<IniLine>& lines, std::size_t header,
                    std::string_view key) {
  std::size_t end = SectionEnd(lines, header);
  for (std::size_t i = header + 1; i < end; ++i)
    if (lines[i].kind == IniLine::Kind::kKey &&
        EqualsIgnoreCase(lines[i].name, key))
      return i;
  return kNone;
}

// Reads a file about to be rewritten; false (with the reason) when it
// exists but cannot be read, since writing would then lose what it holds.
bool ReadForWrite(const std::string& file, std::string* contents, bool* existed,
                  std::vector<IniLine>* lines, std::string* error) {
  error->clear();
  ReadResult read = ReadWhole(file, contents);
  if (read == ReadResult::kUnreadable) {
    *error = "cannot read " + file;
    return false;
  }
  *existed = read == ReadResult::kRead;
  *lines = SplitLines(*contents);
  return true;
}

}  // namespace

std::string IniProfileFile::GetString(const std::string& file,
                                      const std::string& section,
                                      const std::string& key,
                                      const std::string& default_value) const {
  std::string contents;
  if (ReadWhole(file, &contents) != ReadResult::kRead) return default_value;
  std::vector<IniLine> lines = SplitLines(contents);
  std::size_t s = FindSection(lines, TrimBlanks(section));
  if (s == kNone) return default_value;
  std::size_t k = FindKey(lines, s, TrimBlanks(key));
  if (k == kNone) return default_value;
  return ProfileUnquote(lines[k].value);
}

void IniProfileFile::WriteString(const std::string& file,
                                 const std::string& section,
                                 const std::string& key,
                                 const std::optional<std::string>& value) {
  if (value) return WriteStrings(file, section, {{key, *value}});
  std::string contents;
  bool existed = false;
  std::vector<IniLine> lines;
  if (!ReadForWrite(file, &contents, &existed, &lines, &last_error_)) return;
  std::size_t s = FindSection(lines, TrimBlanks(OneLine(section)));
  if (s == kNone) return;
  std::size_t k = FindKey(lines, s, TrimBlanks(OneLine(key)));
  if (k == kNone) return;
  lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(k));
  ReplaceFileContents(file, JoinLines(lines), &last_error_);
}

void IniProfileFile::WriteStrings(
    const std::string& file, const std::string& section,
    const std::vector<std::pair<std::string, std::string>>& values) {
  std::vector<ProfileEntry> entries;
  entries.reserve(values.size());
  for (const auto& [key, value] : values)
    entries.push_back({section, key, value});
  WriteEntries(file, entries);
}

void IniProfileFile::WriteEntries(const std::string& file,
                                  const std::vector<ProfileEntry>& entries) {
  if (entries.empty()) return;
  std::string contents;
  bool existed = false;
  std::vector<IniLine> lines;
  if (!ReadForWrite(file, &contents, &existed, &lines, &last_error_)) return;

  // The first section of each name (the one a write changes).
  std::map<std::string, std::size_t> header_of;
  for (std::size_t i = 0; i < lines.size(); ++i)
    if (lines[i].kind == IniLine::Kind::kSection)
      header_of.emplace(LCase(lines[i].name), i);

  // Each section written to: its keys by folded name (the first of a
  // name), where new keys go (after its last line that is not blank), and
  // the keys added. A section not in the file goes at its end.
  struct Block {
    std::string header;  // a new section's header line; empty otherwise
    std::size_t at = 0;  // the line new keys go before
    std::map<std::string, std::size_t> keys;
    std::vector<IniLine> added;
    std::map<std::string, std::size_t> added_at;
  };
  std::vector<Block> blocks;
  std::map<std::string, std::size_t> block_of;
  for (const ProfileEntry& e : entries) {
    const std::string section_name(TrimBlanks(OneLine(e.section)));
    const std::string folded_section = LCase(section_name);
    auto b = block_of.find(folded_section);
    if (b == block_of.end()) {
      Block block;
      if (auto h = header_of.find(folded_section); h != header_of.end()) {
        const std::size_t end = SectionEnd(lines, h->second);
        block.at = h->second + 1;
        for (std::size_t i = h->second + 1; i < end; ++i) {
          if (lines[i].kind == IniLine::Kind::kKey)
            block.keys.emplace(LCase(lines[i].name), i);
          if (!TrimBlanks(lines[i].text).empty()) block.at = i + 1;
        }
      } else {
        block.header = "[" + section_name + "]";
      }
      b = block_of.emplace(folded_section, blocks.size()).first;
      blocks.push_back(std::move(block));
    }
    Block& block = blocks[b->second];
    const std::string key_name(TrimBlanks(OneLine(e.key)));
    const std::string folded = LCase(key_name);
    if (auto k = block.keys.find(folded); k != block.keys.end()) {
      lines[k->second] =
          Classify(lines[k->second].name + "=" + OneLine(e.value));
    } else if (auto a = block.added_at.find(folded);
               a != block.added_at.end()) {
      block.added[a->second] =
          Classify(block.added[a->second].name + "=" + OneLine(e.value));
    } else {
      block.added_at.emplace(folded, block.added.size());
      block.added.push_back(Classify(key_name + "=" + OneLine(e.value)));
    }
  }

  // The file again: each existing section's new keys in their place, then
  // the new sections.
  std::multimap<std::size_t, const Block*> added_before;
  for (const Block& block : blocks)
    if (block.header.empty() && !block.added.empty())
      added_before.emplace(block.at, &block);
  std::vector<IniLine> out;
  out.reserve(lines.size() + entries.size() + blocks.size());
  auto add_keys_before = [&](std::size_t i) {
    auto [from, to] = added_before.equal_range(i);
    for (auto it = from; it != to; ++it)
      out.insert(out.end(), it->second->added.begin(), it->second->added.end());
  };
  for (std::size_t i = 0; i < lines.size(); ++i) {
    add_keys_before(i);
    out.push_back(std::move(lines[i]));
  }
  add_keys_before(lines.size());
  for (const Block& block : blocks) {
    if (block.header.empty()) continue;
    out.push_back(Classify(block.header));
    out.insert(out.end(), block.added.begin(), block.added.end());
  }
  std::string updated = JoinLines(out);
  if (existed && updated == contents) return;
  ReplaceFileContents(file, updated, &last_error_);
}

ProfileFile::Sections IniProfileFile::Dump(const std::string& file) const {
  Sections out;
  std::string contents;
  if (ReadWhole(file, &contents) != ReadResult::kRead) return out;
  std::vector<IniLine> lines = SplitLines(contents);
  // Only what a read would find: the first section of a name and the first
  // key of a name in it.
  std::set<std::string> seen_sections;
  std::map<std::string, std::string>* current = nullptr;
  std::set<std::string> seen_keys;
  for (const IniLine& line : lines) {
    if (line.kind == IniLine::Kind::kSection) {
      current = nullptr;
      if (seen_sections.insert(LCase(line.name)).second) {
        current = &out[line.name];
        seen_keys.clear();
      }
    } else if (line.kind == IniLine::Kind::kKey && current &&
               seen_keys.insert(LCase(line.name)).second) {
      (*current)[line.name] = ProfileUnquote(line.value);
    }
  }
  return out;
}

}  // namespace quorvex
