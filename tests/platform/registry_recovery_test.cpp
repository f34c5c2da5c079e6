// The registry's databases under trouble: writers at once, writers killed at any instant, and
// databases lost, emptied, cut short or overwritten between two runs of a program.
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <set>
#include <thread>

#include "registry_fixture.h"

namespace {

class RegistryRecovery : public RegistryTest {
protected:
    // zel on this test's registry.
    zeltest::ProgramResult Zel(const std::vector<std::string>& args) const {
        return zeltest::RunProgram(
            ZEL_TEST_ZEL_PATH, args,
            {{"ZEL_REGISTRY_DIR", dir_.file("registry")}, {"XDG_RUNTIME_DIR", dir_.file("run")}});
    }

    // Files in the registry directory that are not a hive database or its log.
    std::vector<std::string> Strays() const {
        static const std::set<std::string> known = {"current_user.db",  "current_user.db-wal",  "current_user.db-shm",
                                                    "local_machine.db", "local_machine.db-wal", "local_machine.db-shm"};
        std::vector<std::string> strays;
        for (const auto& entry : std::filesystem::directory_iterator(dir_.file("registry")))
            if (!known.count(entry.path().filename())) strays.push_back(entry.path().filename());
        return strays;
    }

    static std::u16string Name(int writer, int i) { return u"w" + Number(writer) + u"-" + Number(i); }
};

// The lines of text.
std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t start = 0, end; start < text.size(); start = end + 1) {
        end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        lines.push_back(text.substr(start, end - start));
    }
    return lines;
}

TEST_F(RegistryRecovery, WritersAtOnceLoseNothingAndKilledWritersLoseNothingAcknowledged) {
    RegCloseKey(Create(u"Software\\Stress"));
    constexpr int kWriters = 4, kPerWriter = 50;
    int gate[2];
    ASSERT_EQ(pipe(gate), 0);
    fflush(nullptr);
    std::vector<pid_t> writers;
    for (int w = 0; w < kWriters; ++w) {
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(gate[1]);
            char byte;
            (void)!read(gate[0], &byte, 1);
            HKEY key = Create(u"Software\\Stress");
            int failures = 0;
            for (int i = 0; i < kPerWriter; ++i) failures += SetDword(key, Name(w, i).c_str(), i) != ERROR_SUCCESS;
            _exit(failures ? 1 : 0);
        }
        writers.push_back(child);
    }
    close(gate[0]);
    close(gate[1]);
    for (pid_t child : writers) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    HKEY key = Create(u"Software\\Stress");
    EXPECT_EQ(ValueNames(key).size(), static_cast<size_t>(kWriters * kPerWriter));

    // Each killed writer reports on a pipe every value that the registry said it kept.
    std::mt19937 random(7);
    for (int trial = 0; trial < 10; ++trial) {
        int acks[2];
        ASSERT_EQ(pipe(acks), 0);
        fflush(nullptr);
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(acks[0]);
            HKEY own = Create(u"Software\\Stress");
            for (int i = 0;; ++i)
                if (SetDword(own, Name(100 + trial, i).c_str(), i) == ERROR_SUCCESS)
                    (void)!write(acks[1], &i, sizeof i);
        }
        close(acks[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(2000 + random() % 20000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        int i = 0, acknowledged = 0;
        while (read(acks[0], &i, sizeof i) == sizeof i) {
            ++acknowledged;
            DWORD value = 0, size = sizeof value;
            EXPECT_EQ(RegQueryValueExW(key, Name(100 + trial, i).c_str(), nullptr, nullptr,
                                       reinterpret_cast<LPBYTE>(&value), &size),
                      ERROR_SUCCESS)
                << "trial " << trial << ", value " << i;
        }
        close(acks[0]);
        EXPECT_EQ(Strays(), std::vector<std::string>{}) << "trial " << trial << " after " << acknowledged;
    }
    RegCloseKey(key);
}

TEST_F(RegistryRecovery, ALostHiveDatabaseLeavesSoftwareLastingAndIsSaidOnce) {
    // Any start makes the volatile key of the user's language below Software.
    ASSERT_EQ(Zel({"reg", "set", "HKCU\\Software\\Before", "v", "sz", "one"}).status, 0);
    for (const char* suffix : {"", "-wal", "-shm"}) unlink((dir_.file("registry/current_user.db") + suffix).c_str());

    zeltest::ProgramResult set = Zel({"reg", "set", "HKCU\\Software\\A", "a", "sz", "one"});
    EXPECT_EQ(set.status, 0) << set.err;
    // The volatile database belonged to the lost hive: it goes aside, once.
    ASSERT_EQ(Lines(set.err).size(), 1u) << set.err;
    EXPECT_NE(set.err.find("current_user.db belongs to a hive database that is gone; set aside as"), std::string::npos)
        << set.err;
    zeltest::ProgramResult get = Zel({"reg", "get", "HKCU\\Software\\A", "a"});
    EXPECT_EQ(get.out, "sz \"one\"\n");
    EXPECT_EQ(get.err, "");
    EXPECT_EQ(Zel({"reg", "get", "HKCU\\Software\\Before", "v"}).status, 1);
}

TEST_F(RegistryRecovery, AnEmptiedCutOrOverwrittenDatabaseIsSetAsideOnceAndWritesGoOn) {
    const std::string database = dir_.file("registry/current_user.db");
    // Enough values for a database of many pages, which a clean end of zel writes back whole.
    auto fill = [&] {
        EXPECT_EQ(zeltest::RunInChild([] {
                      HKEY key = Create(u"Software\\Filled");
                      for (int i = 0; i < 300; ++i)
                          if (SetText(key, (u"v" + Number(i)).c_str(), std::u16string(100, u'x')) != ERROR_SUCCESS)
                              return 1;
                      return 0;
                  }),
                  0);
        EXPECT_EQ(Zel({"reg", "get", "HKCU\\Software\\Filled", "v7"}).status, 0);
        ASSERT_FALSE(std::filesystem::exists(database + "-wal"));
    };
    struct Damage {
        const char* name;
        const char* said;
        std::function<void(const std::string&)> apply;
    };
    const Damage damages[] = {
        {"emptied", "is empty", [](const std::string& path) { ASSERT_EQ(truncate(path.c_str(), 0), 0); }},
        {"cut", "is damaged", [](const std::string& path) { ASSERT_EQ(truncate(path.c_str(), 8192), 0); }},
        {"overwritten", "is not a database",
         [](const std::string& path) {
             std::string noise(std::filesystem::file_size(path), '\0');
             std::mt19937 random(3);
             for (char& c : noise) c = static_cast<char>(random());
             zeltest::WriteFile(path, noise);
         }},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.name);
        fill();
        damage.apply(database);
        zeltest::ProgramResult set = Zel({"reg", "set", "HKCU\\Software\\After", "v", "sz", "two"});
        EXPECT_EQ(set.status, 0) << set.err;
        ASSERT_EQ(Lines(set.err).size(), 1u) << set.err;
        EXPECT_NE(set.err.find(database + " " + damage.said), std::string::npos) << set.err;
        EXPECT_NE(set.err.find("set aside as " + database + ".damaged-"), std::string::npos) << set.err;
        zeltest::ProgramResult get = Zel({"reg", "get", "HKCU\\Software\\After", "v"});
        EXPECT_EQ(get.out, "sz \"two\"\n");
        EXPECT_EQ(get.err, "");
        for (const std::string& stray : Strays()) {
            EXPECT_EQ(stray.rfind("current_user.db.damaged-", 0), 0u) << stray;
            std::filesystem::remove(dir_.file("registry/" + stray));
        }
    }
}

}  // namespace
