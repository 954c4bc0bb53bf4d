// The module's file, read as the system's loader reads it (Microsoft's PE/COFF format).
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace kelto {
namespace {

class PeFile {
 public:
  explicit PeFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
    headers_ = At<IMAGE_NT_HEADERS32>(At<IMAGE_DOS_HEADER>(0).e_lfanew);
  }

  const IMAGE_NT_HEADERS32& headers() const { return headers_; }

  std::vector<std::string> ExportedNames() const {
    const DWORD table =
        headers_.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
    const auto directory = At<IMAGE_EXPORT_DIRECTORY>(Offset(table));
    // Functions without a name would be reachable by number.
    EXPECT_EQ(directory.NumberOfFunctions, directory.NumberOfNames);
    std::vector<std::string> names;
    for (DWORD i = 0; i < directory.NumberOfNames; ++i) {
      const DWORD name = At<DWORD>(Offset(directory.AddressOfNames) + i * sizeof(DWORD));
      names.emplace_back(&bytes_.at(Offset(name)));
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  template <typename T>
  T At(size_t offset) const {
    if (offset + sizeof(T) > bytes_.size()) throw std::runtime_error("the file is too short");
    T value;
    std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(offset), sizeof(T),
                reinterpret_cast<char*>(&value));
    return value;
  }

  /// Where in the file the address of the loaded image comes from.
  size_t Offset(DWORD address) const {
    const size_t first = At<IMAGE_DOS_HEADER>(0).e_lfanew +
                         offsetof(IMAGE_NT_HEADERS32, OptionalHeader) +
                         headers_.FileHeader.SizeOfOptionalHeader;
    for (WORD i = 0; i < headers_.FileHeader.NumberOfSections; ++i) {
      const auto section = At<IMAGE_SECTION_HEADER>(first + i * sizeof(IMAGE_SECTION_HEADER));
      if (address >= section.VirtualAddress &&
          address < section.VirtualAddress + section.Misc.VirtualSize) {
        return address - section.VirtualAddress + section.PointerToRawData;
      }
    }
    throw std::runtime_error("an address outside all sections");
  }

  std::vector<char> bytes_;
  IMAGE_NT_HEADERS32 headers_ = {};
};

TEST(ModuleFile, IsA32BitDynamicLibrary) {
  const PeFile file(KELTO_MODULE);
  EXPECT_EQ(file.headers().Signature, DWORD{IMAGE_NT_SIGNATURE});
  EXPECT_EQ(file.headers().FileHeader.Machine, IMAGE_FILE_MACHINE_I386);
  EXPECT_NE(file.headers().FileHeader.Characteristics & IMAGE_FILE_DLL, 0);
  EXPECT_NE(file.headers().OptionalHeader.AddressOfEntryPoint, 0u) << "DllMain is reached from it";
}

TEST(ModuleFile, ExportsTheSevenEntryPointsUndecoratedAndNothingElse) {
  EXPECT_EQ(PeFile(KELTO_MODULE).ExportedNames(),
            (std::vector<std::string>{"hfxGetModelAttributes_v1ext", "hfxNewModel_v1",
                                      "hfxNewOverlay_v1", "hfxNumModels_v1", "hfxSetAttribute",
                                      "hfxShutDown_v1", "hfxStartUp_v1"}));
}

}  // namespace
}  // namespace kelto
