#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/engine/OS.h"

#include "tests/support/TempFolder.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>

namespace Quon
{
namespace
{

const std::filesystem::path module = ENGINE_TEST_MODULE;
const std::string moduleName = module.filename().string();

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

TEST(DynamicLibrary, IsFoundInTheDriverFoldersInTheirOrderOrBesideTheEngine)
{
    const TempFolder broken;
    broken.Write(moduleName, "this is no library");
    OS os;
    EXPECT_FALSE(MakeLibrary(os)->Open(moduleName.c_str()));

    const std::filesystem::path beside = std::filesystem::path(ENGINE_LIBRARY).parent_path() / "Beside.so";
    std::filesystem::copy_file(module, beside, std::filesystem::copy_options::overwrite_existing);
    const auto neighbour = MakeLibrary(os);
    EXPECT_TRUE(neighbour->Open("Beside.so"));
    EXPECT_EQ(Answer(*neighbour), 42);
    std::filesystem::remove(beside);

    os.AddDriverFolder(broken.GetPath().c_str());
    os.AddDriverFolder("");
    os.AddDriverFolder((module.parent_path().string() + "/").c_str());
    const auto library = MakeLibrary(os);
    ASSERT_TRUE(library->Open(moduleName.c_str()));
    EXPECT_EQ(Answer(*library), 42);
    EXPECT_TRUE(moduleName.ends_with(dynamicLibrarySuffix));
}

// The loader could find a file again that was refused, and would not look at it as closely.
TEST(DynamicLibrary, IsLeftToTheLoaderOnlyWhenNoFolderHasIt)
{
    constexpr const char* systemLibrary = "libm.so.6";
    OS os;
    EXPECT_TRUE(MakeLibrary(os)->Open(systemLibrary));
    const TempFolder folder;
    folder.Write(systemLibrary, "this is no library");
    os.AddDriverFolder(folder.GetPath().c_str());
    EXPECT_FALSE(MakeLibrary(os)->Open(systemLibrary));
}

TEST(DynamicLibrary, LetsGoOfTheOldLibraryWhenItOpensAnother)
{
    const OS os;
    const auto library = MakeLibrary(os);
    ASSERT_TRUE(library->Open(module.c_str()));
    EXPECT_FALSE(library->Open("/nonexistent/library.so"));
    EXPECT_EQ(Answer(*library), -1);
    EXPECT_TRUE(library->Open(module.c_str()));
    void* symbol = &symbol;
    EXPECT_FALSE(library->GetSymbol(&symbol, "NoSuchFunction"));
    EXPECT_EQ(symbol, nullptr);
    EXPECT_FALSE(library->GetSymbol(&symbol, nullptr));
    library->Close();
    library->Close();
    EXPECT_EQ(Answer(*library), -1);
}

TEST(DynamicLibrary, RefusesWhatIsNoLibrary)
{
    const TempFolder folder;
    folder.Write("text.so", "#!/bin/sh\necho no\n");
    folder.Write("empty.so", "");
    folder.Write("magic.so", "\177ELF");
    folder.Write("zeros.so", std::string(100000, '\0'));
    std::filesystem::create_directory(folder.Path("folder.so"));
    ASSERT_EQ(mkfifo(folder.Path("pipe.so").c_str(), 0600), 0);
    std::filesystem::create_symlink("dangling", folder.Path("link.so"));
    OS os;
    os.AddDriverFolder(folder.GetPath().c_str());
    for (const char* name : {"text.so", "empty.so", "magic.so", "zeros.so", "folder.so", "pipe.so", "link.so",
             "missing.so", ""}) {
        SCOPED_TRACE(name);
        const auto library = MakeLibrary(os);
        EXPECT_FALSE(library->Open(name));
        EXPECT_FALSE(library->Open(folder.Path(name).c_str()));
    }
    EXPECT_FALSE(MakeLibrary(os)->Open(nullptr));
}

// The platform's loader maps a torn library without a look at its length and dies of it, so each prefix must
// be refused before, or be enough to run.
TEST(DynamicLibrary, RefusesEveryTruncationThatCannotRun)
{
    const TempFolder folder;
    const std::uintmax_t whole = std::filesystem::file_size(module);
    ASSERT_GT(whole, 80000u);
    const OS os;
    int refused = 0;
    for (std::uintmax_t kept = 0; kept < whole; kept += 997) {
        SCOPED_TRACE("kept " + std::to_string(kept) + " bytes");
        // A fresh name for each: the loader knows a library again by its place on the disk.
        const std::string path = folder.Path(std::to_string(kept) + ".so");
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
