// The program file as Windows shows it: the version and names in its
// properties, the icon at the sizes the task bar, Alt+Tab and Explorer ask
// for, and the application manifest Windows reads as it starts it.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace {

// The build passes a host path; under Wine the host's root is drive Z:.
std::wstring ProgramPath() {
  std::string path = QV_PROGRAM;
  if (!path.empty() && path[0] == '/') path = "Z:" + path;
  std::wstring wide;
  for (char ch : path) wide += static_cast<wchar_t>(ch == '/' ? '\\' : ch);
  return wide;
}

std::string Narrow(const wchar_t* text) {
  std::string s;
  for (; text && *text; ++text) s += static_cast<char>(*text);
  return s;
}

// The program loaded as data: its resources, none of its code.
class ResourcesTest : public testing::Test {
 protected:
  ResourcesTest()
      : program(::LoadLibraryExW(ProgramPath().c_str(), nullptr,
                                 LOAD_LIBRARY_AS_DATAFILE)) {}
  ~ResourcesTest() override {
    if (program) ::FreeLibrary(program);
  }
  std::string Resource(const wchar_t* type, int id) {
    HRSRC r = ::FindResourceW(program, MAKEINTRESOURCEW(id), type);
    if (!r) return {};
    const char* bytes =
        static_cast<const char*>(::LockResource(::LoadResource(program, r)));
    return std::string(bytes, ::SizeofResource(program, r));
  }
  HMODULE program;
};

TEST_F(ResourcesTest, PropertiesShowTheVersionAndTheProductName) {
  const std::wstring path = ProgramPath();
  DWORD ignored = 0;
  const DWORD size = ::GetFileVersionInfoSizeW(path.c_str(), &ignored);
  ASSERT_GT(size, 0u) << Narrow(path.c_str());
  std::vector<BYTE> info(size);
  ASSERT_TRUE(::GetFileVersionInfoW(path.c_str(), 0, size, info.data()));

  // The numbers Windows compares, from the one version of the build.
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT length = 0;
  ASSERT_TRUE(::VerQueryValueW(info.data(), L"\\",
                               reinterpret_cast<void**>(&fixed), &length));
  EXPECT_EQ(fixed->dwSignature, 0xFEEF04BDu);
  const std::string numbers =
      std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
      std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
      std::to_string(HIWORD(fixed->dwFileVersionLS));
  EXPECT_EQ(numbers, QUORVEX_VERSION);
  EXPECT_EQ(LOWORD(fixed->dwFileVersionLS), 0);
  EXPECT_EQ(fixed->dwProductVersionMS, fixed->dwFileVersionMS);
  EXPECT_EQ(fixed->dwProductVersionLS, fixed->dwFileVersionLS);
  EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_APP));

  // The texts of the properties' details, in the language the
  // translation table names.
  auto text = [&info](const char* name) {
    const std::wstring key =
        L"\\StringFileInfo\\040904B0\\" +
        std::wstring(name, name + std::char_traits<char>::length(name));
    wchar_t* value = nullptr;
    UINT chars = 0;
    if (!::VerQueryValueW(info.data(), key.c_str(),
                          reinterpret_cast<void**>(&value), &chars))
      return std::string("(none)");
    return Narrow(value);
  };
  EXPECT_EQ(text("ProductName"), "Quorvex mail server");
  EXPECT_EQ(text("FileDescription"), "Quorvex mail server");
  EXPECT_EQ(text("FileVersion"), QUORVEX_VERSION);
  EXPECT_EQ(text("ProductVersion"), QUORVEX_VERSION);
  EXPECT_EQ(text("OriginalFilename"), "quorvex.exe");
  WORD* translation = nullptr;
  ASSERT_TRUE(::VerQueryValueW(info.data(), L"\\VarFileInfo\\Translation",
                               reinterpret_cast<void**>(&translation),
                               &length));
  ASSERT_GE(length, 4u);
  EXPECT_EQ(translation[0], 0x0409);
  EXPECT_EQ(translation[1], 1200);
}

TEST_F(ResourcesTest, TheIconComesAtEverySizeWindowsAsksFor) {
  ASSERT_NE(program, nullptr);
  // The icon group: one entry a size (a width of 0 is 256).
  const std::string group = Resource(RT_GROUP_ICON, 1);
  ASSERT_GE(group.size(), 6u);
  const auto* bytes = reinterpret_cast<const unsigned char*>(group.data());
  const int count = bytes[4] | bytes[5] << 8;
  ASSERT_EQ(group.size(), 6u + 14u * static_cast<unsigned>(count));
  std::vector<int> sizes;
  for (int i = 0; i < count; ++i) {
    const unsigned char* entry = bytes + 6 + 14 * i;
    EXPECT_EQ(entry[0], entry[1]) << "entry " << i << " is not square";
    sizes.push_back(entry[0] == 0 ? 256 : entry[0]);
    // 32 bits a pixel: the band's shading and the round corners' alpha.
    EXPECT_EQ(entry[6] | entry[7] << 8, 32) << sizes.back();
  }
  EXPECT_EQ(sizes, (std::vector<int>{16, 20, 24, 32, 40, 48, 64, 256}));

  // What the system loads for the task bar (small) and Alt+Tab (large),
  // and what Explorer shows for the file.
  for (int want : {16, 32, 48}) {
    HICON icon = static_cast<HICON>(
        ::LoadImageW(program, MAKEINTRESOURCEW(1), IMAGE_ICON, want, want, 0));
    ASSERT_NE(icon, nullptr) << want;
    ICONINFO ii{};
    ASSERT_TRUE(::GetIconInfo(icon, &ii));
    BITMAP bm{};
    ::GetObjectW(ii.hbmColor, sizeof bm, &bm);
    EXPECT_EQ(bm.bmWidth, want);
    EXPECT_EQ(bm.bmHeight, want);
    ::DeleteObject(ii.hbmColor);
    ::DeleteObject(ii.hbmMask);
    ::DestroyIcon(icon);
  }
  HICON large = nullptr, small = nullptr;
  EXPECT_GE(::ExtractIconExW(ProgramPath().c_str(), 0, &large, &small, 1), 1u);
  EXPECT_NE(large, nullptr);
  EXPECT_NE(small, nullptr);
  if (large) ::DestroyIcon(large);
  if (small) ::DestroyIcon(small);
}

TEST_F(ResourcesTest, TheManifestAsksForNoRightsAndScalesWithTheScreen) {
  const std::string manifest = Resource(MAKEINTRESOURCEW(24), 1);
  ASSERT_FALSE(manifest.empty());
  auto has = [&manifest](const std::string& part) {
    return manifest.find(part) != std::string::npos;
  };
  EXPECT_TRUE(has("level=\"asInvoker\""));
  // Read by XP as it starts the program: the asm.v3 namespace is not.
  EXPECT_TRUE(has("<trustInfo xmlns=\"urn:schemas-microsoft-com:asm.v2\">"));
  EXPECT_TRUE(has(std::string("version=\"") + QUORVEX_VERSION + ".0\""));
  EXPECT_TRUE(has(sizeof(void*) == 8 ? "processorArchitecture=\"amd64\""
                                     : "processorArchitecture=\"x86\""));
  for (const char* os : {"{e2011457-1546-43c5-a5fe-008deee3d3f0}",   // Vista
                         "{35138b9a-5d96-4fbd-8e2d-a2440225f93a}",   // 7
                         "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}",   // 8
                         "{1f676c76-80e1-4239-95bb-83d0f6d0da78}",   // 8.1
                         "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"})  // 10, 11
    EXPECT_TRUE(has(std::string("<supportedOS Id=\"") + os + "\"/>")) << os;
  EXPECT_TRUE(has(">true</dpiAware>"));

  // The system's own reader takes it: a manifest it refuses stops the
  // program before it runs ("side-by-side configuration is incorrect").
  const std::wstring path = ProgramPath();
  ACTCTXW context{};
  context.cbSize = sizeof context;
  context.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID;
  context.lpSource = path.c_str();
  context.lpResourceName = MAKEINTRESOURCEW(1);
  HANDLE handle = ::CreateActCtxW(&context);
  EXPECT_NE(handle, INVALID_HANDLE_VALUE) << ::GetLastError();
  if (handle != INVALID_HANDLE_VALUE) ::ReleaseActCtx(handle);
}

}  // namespace
