#include "win32/win32_registry.h"

#include <windows.h>

#include <vector>

#include "win32/code_page.h"

namespace quorvex::win32 {

namespace {

std::wstring KeyPath(const std::string& root, const std::string& app,
                     const std::string& section = "") {
  std::string path = root + "\\" + app;
  if (!section.empty()) path += "\\" + section;
  return Utf8ToWide(path);
}

// An open key, closed when it goes.
class Key {
 public:
  Key(const std::wstring& path, bool create) {
    const LSTATUS s =
        create
            ? ::RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0,
                                KEY_READ | KEY_WRITE, nullptr, &key_, nullptr)
            : ::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0,
                              KEY_READ | KEY_WRITE, &key_);
    if (s != ERROR_SUCCESS) key_ = nullptr;
  }
  ~Key() {
    if (key_) ::RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  HKEY get() const { return key_; }
  explicit operator bool() const { return key_ != nullptr; }

 private:
  HKEY key_ = nullptr;
};

std::optional<std::string> ReadText(HKEY key, const std::wstring& name) {
  DWORD type = 0, bytes = 0;
  if (::RegQueryValueExW(key, name.c_str(), nullptr, &type, nullptr, &bytes) !=
          ERROR_SUCCESS ||
      (type != REG_SZ && type != REG_EXPAND_SZ))
    return std::nullopt;
  std::vector<wchar_t> buf(bytes / sizeof(wchar_t) + 1, 0);
  if (::RegQueryValueExW(key, name.c_str(), nullptr, &type,
                         reinterpret_cast<BYTE*>(buf.data()),
                         &bytes) != ERROR_SUCCESS)
    return std::nullopt;
  std::wstring_view v(buf.data(), bytes / sizeof(wchar_t));
  while (!v.empty() && v.back() == 0) v.remove_suffix(1);
  return WideToUtf8(v);
}

// Deletes a key with every key and value under it, deepest first (the
// system deletes only keys without subkeys). False when one stays.
bool DeleteTree(HKEY parent, const std::wstring& name) {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ | KEY_WRITE, &key) !=
      ERROR_SUCCESS)
    return false;
  for (;;) {
    // Always the first subkey: the one before is gone.
    wchar_t child[256];
    DWORD len = 256;
    if (::RegEnumKeyExW(key, 0, child, &len, nullptr, nullptr, nullptr,
                        nullptr) != ERROR_SUCCESS ||
        !DeleteTree(key, std::wstring(child, len)))
      break;
  }
  ::RegCloseKey(key);
  return ::RegDeleteKeyW(parent, name.c_str()) == ERROR_SUCCESS;
}

}  // namespace

Win32Registry::Win32Registry(std::string root) : root_(std::move(root)) {}

std::optional<std::string> Win32Registry::Get(const std::string& app,
                                              const std::string& section,
                                              const std::string& key) const {
  Key k(KeyPath(root_, app, section), false);
  if (!k) return std::nullopt;
  return ReadText(k.get(), Utf8ToWide(key));
}

void Win32Registry::Save(const std::string& app, const std::string& section,
                         const std::string& key, const std::string& value) {
  Key k(KeyPath(root_, app, section), true);
  if (!k) return;
  const std::wstring v = Utf8ToWide(value);
  ::RegSetValueExW(k.get(), Utf8ToWide(key).c_str(), 0, REG_SZ,
                   reinterpret_cast<const BYTE*>(v.c_str()),
                   static_cast<DWORD>((v.size() + 1) * sizeof(wchar_t)));
}

void Win32Registry::DeleteKey(const std::string& app,
                              const std::string& section,
                              const std::string& key) {
  Key k(KeyPath(root_, app, section), false);
  if (k) ::RegDeleteValueW(k.get(), Utf8ToWide(key).c_str());
}

void Win32Registry::DeleteApp(const std::string& app) {
  DeleteTree(HKEY_CURRENT_USER, KeyPath(root_, app));
}

Registry::Sections Win32Registry::Dump(const std::string& app) const {
  Sections out;
  Key k(KeyPath(root_, app), false);
  if (!k) return out;
  for (DWORD i = 0;; ++i) {
    wchar_t name[256];
    DWORD len = 256;
    if (::RegEnumKeyExW(k.get(), i, name, &len, nullptr, nullptr, nullptr,
                        nullptr) != ERROR_SUCCESS)
      break;
    const std::string section = WideToUtf8(std::wstring_view(name, len));
    auto& values = out[section];
    Key s(KeyPath(root_, app, section), false);
    if (!s) continue;
    for (DWORD j = 0;; ++j) {
      wchar_t value_name[16384];
      DWORD vlen = 16384;
      if (::RegEnumValueW(s.get(), j, value_name, &vlen, nullptr, nullptr,
                          nullptr, nullptr) != ERROR_SUCCESS)
        break;
      const std::wstring vn(value_name, vlen);
      if (auto v = ReadText(s.get(), vn)) values[WideToUtf8(vn)] = *v;
    }
  }
  return out;
}

}  // namespace quorvex::win32
