#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/engine/OS.h"

#include "tests/support/TempFolder.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>

namespace Quon
{
namespace
{

const std::filesystem::path module = ENGINE_TEST_MODULE;
const std::string moduleName = module.filename().string();
const std::string suffix = dynamicLibrarySuffix;
#if defined(_WIN32)
constexpr const char* systemLibrary = "winmm.dll";
constexpr const char* magic = "MZ";
#else
constexpr const char* systemLibrary = "libm.so.6";
constexpr const char* magic = "\177ELF";
#endif

std::unique_ptr<DynamicLibrary> MakeLibrary(const OS& os)
{
    return std::unique_ptr<DynamicLibrary>(os.CreateDynamicLibrary());
}

/// What the module's function gives, or -1 if it cannot be found.
int Answer(DynamicLibrary& library)
{
    void* symbol = nullptr;
    if (!library.GetSymbol(&symbol, "ModuleAnswer")) {
        return -1;
    }
    int (*answer)() = nullptr;
    std::memcpy(&answer, &symbol, sizeof(symbol));
    return answer();
}

TEST(DynamicLibrary, SearchesDriverFoldersInOrderThenTheEngineFolder)
{
    const TempFolder broken;
    broken.Write(moduleName, "this is no library");
    OS os;
    EXPECT_FALSE(MakeLibrary(os)->Open(moduleName.c_str()));

    const std::filesystem::path beside =
        std::filesystem::path(ENGINE_LIBRARY).parent_path() / ("Beside" + suffix);
    std::filesystem::remove(beside);
    std::filesystem::copy_file(module, beside);
    const auto neighbour = MakeLibrary(os);
    EXPECT_TRUE(neighbour->Open(("Beside" + suffix).c_str()));
    EXPECT_EQ(Answer(*neighbour), 42);
    neighbour->Close();
    std::filesystem::remove(beside);

    os.AddDriverFolder(broken.GetPath().string().c_str());
    os.AddDriverFolder("");
    os.AddDriverFolder((module.parent_path().string() + "/").c_str());
    const auto library = MakeLibrary(os);
    ASSERT_TRUE(library->Open(moduleName.c_str()));
    EXPECT_EQ(Answer(*library), 42);
    EXPECT_TRUE(moduleName.ends_with(dynamicLibrarySuffix));
}

// The loader could find a refused file again, and would check it less strictly.
TEST(DynamicLibrary, FallsBackToTheSystemLoader)
{
    OS os;
    EXPECT_TRUE(MakeLibrary(os)->Open(systemLibrary));
    const TempFolder folder;
    folder.Write(systemLibrary, "this is no library");
    os.AddDriverFolder(folder.GetPath().string().c_str());
    EXPECT_FALSE(MakeLibrary(os)->Open(systemLibrary));
}

TEST(DynamicLibrary, ClosesTheOldLibraryBeforeOpeningAnother)
{
    const OS os;
    const auto library = MakeLibrary(os);
    ASSERT_TRUE(library->Open(module.string().c_str()));
    EXPECT_FALSE(library->Open("/nonexistent/library.so"));
    EXPECT_EQ(Answer(*library), -1);
    EXPECT_TRUE(library->Open(module.string().c_str()));
    void* symbol = &symbol;
    EXPECT_FALSE(library->GetSymbol(&symbol, "NoSuchFunction"));
    EXPECT_EQ(symbol, nullptr);
    EXPECT_FALSE(library->GetSymbol(&symbol, nullptr));
    library->Close();
    library->Close();
    EXPECT_EQ(Answer(*library), -1);
}

TEST(DynamicLibrary, RefusesFilesThatAreNotLibraries)
{
    const TempFolder folder;
    folder.Write("text" + suffix, "#!/bin/sh\necho no\n");
    folder.Write("empty" + suffix, "");
    folder.Write("magic" + suffix, magic);
    folder.Write("zeros" + suffix, std::string(100000, '\0'));
    std::filesystem::create_directory(folder.Path("folder" + suffix));
    OS os;
    os.AddDriverFolder(folder.GetPath().string().c_str());
    for (const char* stem : {"text", "empty", "magic", "zeros", "folder", "missing"}) {
        SCOPED_TRACE(stem);
        const std::string name = stem + suffix;
        const auto library = MakeLibrary(os);
        EXPECT_FALSE(library->Open(name.c_str()));
        EXPECT_FALSE(library->Open(folder.Path(name).c_str()));
    }
    EXPECT_FALSE(MakeLibrary(os)->Open(""));
    EXPECT_FALSE(MakeLibrary(os)->Open(nullptr));
}

// The platform's loader maps a truncated library without checking its length and crashes, so each prefix must
// be refused before, or be complete enough to run.
TEST(DynamicLibrary, RefusesTruncatedLibraries)
{
    const TempFolder folder;
    const std::uintmax_t whole = std::filesystem::file_size(module);
    ASSERT_GT(whole, 80000U);
    const OS os;
    int refused = 0;
    for (std::uintmax_t kept = 0; kept < whole; kept += 997) {
        SCOPED_TRACE("kept " + std::to_string(kept) + " bytes");
        // A fresh name for each: the loader knows a library again by its place on the disk.
        const std::string path = folder.Path(std::to_string(kept) + suffix);
        std::filesystem::copy_file(module, path);
        std::filesystem::resize_file(path, kept);
        const auto library = MakeLibrary(os);
        if (library->Open(path.c_str())) {
            EXPECT_EQ(Answer(*library), 42);
        }
        else {
            ++refused;
        }
    }
    EXPECT_GT(refused, 40);
}

} // namespace
} // namespace Quon
