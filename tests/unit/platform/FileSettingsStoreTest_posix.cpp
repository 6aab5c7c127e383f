#include "platform/FileSettingsStore.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "platform/RegistryText.h"
#include "tests/unit/support/EnvironmentVariable_posix.h"
#include "tests/unit/support/RegistryDump.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/SampleBytes.h"

namespace vardel {
namespace {

namespace fs = std::filesystem;
using test::Dump;
using test::TestFolder;

const std::string kHeader = "REGEDIT4\r\n";

class FileStore : public ::testing::Test {
  protected:
    static constexpr const char* kFile = "config/vardelwatch/settings.reg";
    SettingsFiles Files() const {
        return {folder.Path(kFile), folder.Path("config/autostart"), "/opt/vardelwatch"};
    }

    static void Set(SettingsStore& store, const char* name, const std::string& data, const char* path = "T") {
        const StoreKey key = store.Create(nullptr, path);
        ASSERT_TRUE(key);
        EXPECT_EQ(store.Set(key, name, ValueType::Binary, data.data(), static_cast<u32>(data.size())),
                  StoreResult::Ok);
        store.Close(key);
    }
    static std::string Get(SettingsStore& store, const char* name, const char* path = "T") {
        const StoreKey key = store.Open(nullptr, path);
        if (!key) return "no key";
        ValueType type;
        char data[1000];
        u32 size = sizeof data;
        const StoreResult result = store.Query(key, name, type, data, size);
        store.Close(key);
        return result == StoreResult::Ok ? std::string(data, size) : "no value";
    }
    // A new run of the program.
    std::string GetAnew(const char* name) const {
        FileSettingsStore store(Files());
        return Get(store, name);
    }
    std::string OnDisk() const { return folder.Read(kFile); }
    std::set<std::string> Beside() const {
        std::set<std::string> names;
        std::error_code none;
        for (const auto& entry : fs::directory_iterator(folder.Path("config/vardelwatch"), none))
            names.insert(entry.path().filename());
        return names;
    }
    // What `action` says on standard error.
    template <class Action>
    static std::string Told(Action&& action) {
        testing::internal::CaptureStderr();
        action();
        return testing::internal::GetCapturedStderr();
    }
    static std::size_t LinesOf(const std::string& text) {
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    TestFolder folder;
};

// ---- reading and writing ----

TEST_F(FileStore, AMissingFileIsTheFirstStart) {
    FileSettingsStore store(Files());
    EXPECT_EQ(Told([&] { EXPECT_EQ(Get(store, "n"), "no key"); }), "");
    EXPECT_FALSE(fs::exists(folder.Path("config"))) << "reading makes nothing";
}

TEST_F(FileStore, WhatIsSetIsThereInTheNextRun) {
    FileSettingsStore store(Files());
    EXPECT_EQ(Told([&] { Set(store, "n", "value"); }), "");
    EXPECT_EQ(GetAnew("n"), "value");
    EXPECT_EQ(OnDisk(), kHeader + "\r\n[HKEY_CURRENT_USER\\Software\\T]\r\n\"n\"=hex:76,61,6c,75,65\r\n");
    EXPECT_EQ(Beside(), std::set<std::string>{"settings.reg"}) << "nothing is left behind";
}

TEST_F(FileStore, FileAndFoldersAreTheUsersAlone) {
    FileSettingsStore store(Files());
    Set(store, "n", "value");
    struct stat status;
    ASSERT_EQ(stat(folder.Path(kFile).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    ASSERT_EQ(stat(folder.Path("config/vardelwatch").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(FileStore, ForeignKeysAndTypesAreKept) {
    folder.Write(
        kFile,
        kHeader + "[HKEY_LOCAL_MACHINE\\X]\r\n\"a\"=hex(63):01,02\r\n[HKEY_CURRENT_USER\\Software\\T]\r\n");
    FileSettingsStore store(Files());
    Set(store, "n", "v");
    RegistryText text = ParseRegistryText(OnDisk());
    EXPECT_EQ(Dump(text.tree),
              (std::vector<std::string>{"[HKEY_CURRENT_USER\\Software\\T]",
                                        "[HKEY_CURRENT_USER\\Software\\T] 3 n=v", "[HKEY_LOCAL_MACHINE\\X]",
                                        "[HKEY_LOCAL_MACHINE\\X] 63 a=<1><2>"}));
}

// A file that is replaced gets another number in the file system.
ino_t FileNumber(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

TEST_F(FileStore, ABatchIsWrittenOnceAtItsEnd) {
    FileSettingsStore store(Files());
    Set(store, "n", "before");
    const ino_t before = FileNumber(folder.Path(kFile));
    store.BeginBatch();
    store.BeginBatch();
    Set(store, "n", "after");
    EXPECT_EQ(GetAnew("n"), "before");
    EXPECT_FALSE(store.EndBatch()) << "the inner end leaves it pending";
    EXPECT_EQ(FileNumber(folder.Path(kFile)), before);
    EXPECT_TRUE(store.EndBatch());
    EXPECT_NE(FileNumber(folder.Path(kFile)), before);
    EXPECT_EQ(GetAnew("n"), "after");
}

TEST_F(FileStore, ABatchWithoutChangesWritesNothing) {
    FileSettingsStore store(Files());
    Set(store, "n", "x");
    const ino_t before = FileNumber(folder.Path(kFile));
    {
        const StoreBatch batch(store);
        EXPECT_EQ(Get(store, "n"), "x");
        EXPECT_FALSE(store.Delete("nothing"));
    }
    EXPECT_EQ(FileNumber(folder.Path(kFile)), before);
}

TEST_F(FileStore, ALinkedFileIsReplacedBehindItsLink) {
    folder.Write("elsewhere/real.reg", kHeader);
    fs::create_directories(folder.Path("config/vardelwatch"));
    fs::create_symlink(folder.Path("elsewhere/real.reg"), folder.Path(kFile));
    FileSettingsStore store(Files());
    Set(store, "n", "x");
    EXPECT_TRUE(fs::is_symlink(folder.Path(kFile)));
    EXPECT_NE(folder.Read("elsewhere/real.reg"), kHeader);
    EXPECT_EQ(GetAnew("n"), "x");
}

TEST_F(FileStore, WithoutAHomeSettingsLiveInMemoryAndThatIsTold) {
    FileSettingsStore store(SettingsFiles{});
    const std::string told = Told([&] {
        Set(store, "n", "x");
        Set(store, "m", "y");
        EXPECT_EQ(Get(store, "n"), "x");
        EXPECT_FALSE(store.AddAutostart("Vardelwatch"));
        EXPECT_FALSE(store.RemoveAutostart("Vardelwatch"));
    });
    EXPECT_EQ(LinesOf(told), 1u) << told;
}

// ---- damaged files ----

TEST_F(FileStore, ADamagedFileIsUsedAsFarAsItGoesAndKeptAsideBeforeTheFirstWrite) {
    const std::string damaged =
        kHeader + "[HKEY_CURRENT_USER\\Software\\T]\r\n\"a\"=hex:41\r\nrubbish\r\n\"b\"=hex:42\r\n";
    folder.Write(kFile, damaged);
    FileSettingsStore store(Files());
    const std::string told = Told([&] { EXPECT_EQ(Get(store, "a"), "A"); });
    EXPECT_NE(told.find("damaged at line 4"), std::string::npos) << told;
    EXPECT_EQ(Get(store, "b"), "B");
    EXPECT_EQ(Beside(), std::set<std::string>{"settings.reg"}) << "reading changes nothing";
    EXPECT_EQ(LinesOf(Told([&] { Set(store, "c", "C"); })), 1u) << "where the original is";
    EXPECT_EQ(folder.Read(std::string(kFile) + ".damaged"), damaged);
    EXPECT_EQ(GetAnew("a") + GetAnew("b") + GetAnew("c"), "ABC");
    Set(store, "c", "D");
    EXPECT_EQ(Beside(), (std::set<std::string>{"settings.reg", "settings.reg.damaged"})) << "once";
}

TEST_F(FileStore, EarlierDamagedFilesAreNotOverwritten) {
    folder.Write(std::string(kFile) + ".damaged", "the first");
    folder.Write(std::string(kFile) + ".damaged.2", "the second");
    folder.Write(kFile, "rubbish");
    FileSettingsStore store(Files());
    Told([&] { Set(store, "n", "x"); });
    EXPECT_EQ(folder.Read(std::string(kFile) + ".damaged"), "the first");
    EXPECT_EQ(folder.Read(std::string(kFile) + ".damaged.2"), "the second");
    EXPECT_EQ(folder.Read(std::string(kFile) + ".damaged.3"), "rubbish");
    EXPECT_EQ(GetAnew("n"), "x");
}

TEST_F(FileStore, AFileTornAnywhereIsReadAndNeverLost) {
    const std::string whole = test::SampleBytes("settings/linux.reg");
    ASSERT_GT(whole.size(), 1000u);
    for (std::size_t length = 0; length < whole.size(); length += 97) {
        const std::string torn = whole.substr(0, length);
        fs::remove_all(folder.Path("config"));
        folder.Write(kFile, torn);
        FileSettingsStore store(Files());
        Told([&] { Set(store, "n", "x"); });
        EXPECT_EQ(GetAnew("n"), "x");
        if (ParseRegistryText(torn).damagedLine != 0) {
            EXPECT_EQ(folder.Read(std::string(kFile) + ".damaged"), torn) << length;
        }
    }
}

TEST_F(FileStore, AFolderInThePlaceOfTheFileIsToldAndKeptAside) {
    fs::create_directories(folder.Path(std::string(kFile) + "/inside"));
    FileSettingsStore store(Files());
    const std::string told = Told([&] { EXPECT_EQ(Get(store, "n"), "no key"); });
    EXPECT_NE(told.find("can't be read"), std::string::npos) << told;
    Told([&] { Set(store, "n", "x"); });
    EXPECT_EQ(GetAnew("n"), "x");
    EXPECT_TRUE(fs::is_directory(folder.Path(std::string(kFile) + ".damaged/inside")));
}

// Root is refused nothing by a file's mode bits. While one of these lives, this thread is held to them as any owner
// is; it stays the same user, so that neither the folder above nor the machine has to know another one.
class HeldToModeBits {
  public:
    HeldToModeBits() {
        if (syscall(SYS_capget, &header_, before_) != 0) throw std::runtime_error("capget");
        __user_cap_data_struct held[_LINUX_CAPABILITY_U32S_3] = {before_[0], before_[1]};
        for (const int capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH})
            held[CAP_TO_INDEX(capability)].effective &= ~CAP_TO_MASK(capability);
        if (syscall(SYS_capset, &header_, held) != 0) throw std::runtime_error("capset");
    }
    ~HeldToModeBits() {
        if (syscall(SYS_capset, &header_, before_) != 0) std::abort();
    }
    HeldToModeBits(const HeldToModeBits&) = delete;
    HeldToModeBits& operator=(const HeldToModeBits&) = delete;

  private:
    __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct before_[_LINUX_CAPABILITY_U32S_3]{};
};

TEST_F(FileStore, AnUnreadableFileIsToldAndKeptAside) {
    folder.Write(kFile, kHeader + "; precious\r\n");
    chmod(folder.Path(kFile).c_str(), 0);
    FileSettingsStore store(Files());
    const std::string told = Told([&] {
        const HeldToModeBits held;
        EXPECT_EQ(Get(store, "n"), "no key");
        Set(store, "n", "x");
        EXPECT_EQ(GetAnew("n"), "x");
    });
    EXPECT_NE(told.find("can't be read"), std::string::npos) << told;
    const std::string kept = std::string(kFile) + ".damaged";
    chmod(folder.Path(kept).c_str(), 0600);
    EXPECT_EQ(folder.Read(kept), kHeader + "; precious\r\n");
}

// ---- failing writes ----

// The largest file that this process may write, in bytes: what a full disk does to a write in the middle.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        signalBefore_ = signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before_.rlim_max};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("setrlimit");
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        signal(SIGXFSZ, signalBefore_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit before_{};
    void (*signalBefore_)(int);
};

TEST_F(FileStore, AFullDiskLeavesTheOldFileWholeAndIsToldOnce) {
    FileSettingsStore store(Files());
    Set(store, "n", "old");
    const std::string old = OnDisk();
    // Standard error is captured in a file too, which the limit would cut; so the message is read afterwards.
    std::string told;
    {
        testing::internal::CaptureStderr();
        const FileSizeLimit limit(4096);
        Set(store, "n", std::string(900, 'x'));
        Set(store, "m", std::string(900, 'y'));
        Set(store, "o", std::string(900, 'z'));
        EXPECT_EQ(Get(store, "n"), std::string(900, 'x')) << "memory has it";
        EXPECT_NE(OnDisk(), old) << "the first one still fits";
        const std::string fits = OnDisk();
        Set(store, "p", std::string(900, 'a'));
        EXPECT_EQ(OnDisk(), fits);
        told = testing::internal::GetCapturedStderr();
    }
    EXPECT_EQ(LinesOf(told), 1u) << told;
    EXPECT_NE(told.find("can't be written"), std::string::npos) << told;
    EXPECT_EQ(Beside(), std::set<std::string>{"settings.reg"}) << "the half-written file is gone";
    // There is room again: all that was set meanwhile goes with the next change.
    EXPECT_EQ(Told([&] { Set(store, "q", "1"); }), "");
    EXPECT_EQ(GetAnew("n"), std::string(900, 'x'));
    EXPECT_EQ(GetAnew("p"), std::string(900, 'a'));
    EXPECT_EQ(GetAnew("q"), "1");
}

TEST_F(FileStore, AFailureAfterASuccessIsToldAgain) {
    fs::create_directories(folder.Path("config/vardelwatch"));
    const std::string place = folder.Path("config/vardelwatch");
    FileSettingsStore store(Files());
    const auto setTwice = [&](mode_t rights) {
        chmod(place.c_str(), rights);
        return Told([&] {
            const HeldToModeBits held;
            Set(store, "n", "x");
            Set(store, "n", "y");
        });
    };
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(LinesOf(setTwice(0555)), 1u);
        EXPECT_EQ(setTwice(0755), "");
        EXPECT_EQ(GetAnew("n"), "y");
    }
}

TEST_F(FileStore, ABatchThatCannotBeWrittenSaysSo) {
    FileSettingsStore store(Files());
    store.BeginBatch();
    Set(store, "n", "x");
    Told([&] {
        const FileSizeLimit limit(0);
        EXPECT_FALSE(store.EndBatch());
    });
    store.BeginBatch();
    EXPECT_TRUE(store.EndBatch()) << "tried again";
    EXPECT_EQ(GetAnew("n"), "x");
}

TEST_F(FileStore, WithoutTheRightToWriteTheOldFileStays) {
    folder.Write(kFile, kHeader);
    chmod(folder.Path("config/vardelwatch").c_str(), 0555);
    chmod(folder.Path(kFile).c_str(), 0444);
    FileSettingsStore store(Files());
    const std::string told = Told([&] {
        const HeldToModeBits held;
        Set(store, "n", "x");
        Set(store, "n", "y");
        EXPECT_EQ(Get(store, "n"), "y");
    });
    EXPECT_EQ(OnDisk(), kHeader);
    EXPECT_EQ(LinesOf(told), 1u) << told;
    chmod(folder.Path("config/vardelwatch").c_str(), 0755);
}

TEST_F(FileStore, ADamagedFileThatCannotBeKeptAsideIsNotOverwritten) {
    folder.Write(kFile, "rubbish");
    for (int number = 1; number <= 100; ++number)
        folder.Write(std::string(kFile) + ".damaged" + (number == 1 ? "" : "." + std::to_string(number)),
                     "older");
    FileSettingsStore store(Files());
    const std::string told = Told([&] { Set(store, "n", "x"); });
    EXPECT_EQ(OnDisk(), "rubbish");
    EXPECT_EQ(LinesOf(told), 2u) << told;
    EXPECT_EQ(Get(store, "n"), "x");
}

// ---- places ----

TEST(UserSettingsFilesPosix, LieBelowTheConfigurationFolder) {
    const test::EnvironmentVariable config("XDG_CONFIG_HOME", "/somewhere/config");
    const SettingsFiles files = UserSettingsFiles();
    EXPECT_EQ(files.settings, "/somewhere/config/vardelwatch/settings.reg");
    EXPECT_EQ(files.autostartFolder, "/somewhere/config/autostart");
    EXPECT_EQ(files.program, fs::read_symlink("/proc/self/exe"));
}

TEST(UserSettingsFilesPosix, FallBackOnTheHomeFolder) {
    const test::EnvironmentVariable home("HOME", "/somewhere/home");
    for (const char* config : {static_cast<const char*>(nullptr), "", "relative"}) {
        const test::EnvironmentVariable variable("XDG_CONFIG_HOME", config);
        EXPECT_EQ(UserSettingsFiles().settings, "/somewhere/home/.config/vardelwatch/settings.reg");
    }
}

// ---- autostart ----

TEST_F(FileStore, AutostartIsADesktopEntryOfTheQuotedProgram) {
    FileSettingsStore store(Files());
    EXPECT_TRUE(store.AddAutostart("Vardelwatch"));
    EXPECT_EQ(folder.Read("config/autostart/Vardelwatch.desktop"),
              "[Desktop Entry]\nType=Application\nName=Vardelwatch\nExec=\"/opt/vardelwatch\"\n");
    EXPECT_TRUE(store.RemoveAutostart("Vardelwatch"));
    EXPECT_FALSE(fs::exists(folder.Path("config/autostart/Vardelwatch.desktop")));
}

TEST_F(FileStore, AutostartEscapesWhatTheShellAndTheEntryWouldTake) {
    FileSettingsStore store({folder.Path(kFile), folder.Path("autostart"), "/a b/\"c\"$d`e\\f%g"});
    EXPECT_TRUE(store.AddAutostart("Vardelwatch"));
    EXPECT_NE(folder.Read("autostart/Vardelwatch.desktop")
                  .find("Exec=\"/a b/\\\\\"c\\\\\"\\\\$d\\\\`e\\\\\\\\f%%g\"\n"),
              std::string::npos);
}

}  // namespace
}  // namespace vardel
