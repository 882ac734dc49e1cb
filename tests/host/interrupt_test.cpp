// SPDX-License-Identifier: Apache-2.0
// Signals to corehost as the system sends them: long calls end soon, the code is 130, a second signal ends
// what does not listen, and nothing temporary stays, whatever the signal; a kill may leave a whole file
// beside.
#include "host/terminal/interrupts.h"
#include "tests/support/folder_test.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// corehost with a command, in a process and a folder of its own.
class Running {
  public:
    Running(const std::string& script, const std::filesystem::path& folder)
        : Running({"corehost", "run", script}, folder) {}
    Running(std::vector<std::string> words, const std::filesystem::path& folder) : ready_(folder / "ready") {
        std::filesystem::remove(ready_);
        int input[2];
        EXPECT_EQ(::pipe2(input, O_CLOEXEC), 0);
        child_ = ::fork();
        if (child_ == 0) {
            ::dup2(input[0], STDIN_FILENO);
            for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
                ::dup2(::open("/dev/null", O_WRONLY), stream);
            std::vector<char*> arguments;
            for (std::string& word : words)
                arguments.push_back(word.data());
            arguments.push_back(nullptr);
            if (::chdir(folder.c_str()) == 0)
                ::execv(CORE_TEST_PROGRAM, arguments.data());
            ::_exit(127);
        }
        ::close(input[0]);
        in_ = input[1];
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        if (child_ > 0) {
            ::kill(child_, SIGKILL);
            ::waitpid(child_, nullptr, 0);
        }
        ::close(in_);
    }

    /// Waits until the script has made the file "ready"; false when it never does.
    [[nodiscard]] bool isReady() const {
        for (int tries = 0; tries < 20'000; ++tries) {
            if (std::filesystem::exists(ready_))
                return true;
            std::this_thread::sleep_for(1ms);
        }
        return false;
    }
    /// Writes to its standard input and waits until that is read; false when it never is.
    [[nodiscard]] bool hasRead(const std::string& text) const {
        int left = ::write(in_, text.data(), text.size()) == std::ssize(text) ? 1 : 0;
        for (int tries = 0; left != 0 && tries < 20'000; ++tries) {
            std::this_thread::sleep_for(1ms);
            ::ioctl(in_, FIONREAD, &left);
        }
        return left == 0;
    }
    void send(int signal) const { ::kill(child_, signal); }
    /// Its status once it has ended; nothing within `patience`.
    [[nodiscard]] std::optional<int> ended(Clock::duration patience) {
        for (const auto end = Clock::now() + patience; Clock::now() < end; std::this_thread::sleep_for(2ms)) {
            int status = 0;
            if (::waitpid(child_, &status, WNOHANG) == child_) {
                child_ = 0;
                return status;
            }
        }
        return std::nullopt;
    }

  private:
    std::filesystem::path ready_;
    ::pid_t child_ = 0;
    int in_ = -1;
};

bool is_interrupted(const std::optional<int>& status) {
    return status && WIFEXITED(*status) && WEXITSTATUS(*status) == 130;
}

class InterruptTest : public FolderTest {
  protected:
    InterruptTest() {
        std::string csv = "Name,Number\r\n";
        for (int row = 0; row < 200'000; ++row)
            csv +=
                "customer " + std::to_string(row * 7919 % 200'003) + ',' + std::to_string(row % 977) + "\r\n";
        static_cast<void>(file("data.csv", csv));
        text_ = "T = LoadCsv(\"data.csv\"); SaveText(\"ready\", \"\"); ";
    }
    /// What stands in the folder beside the data and the script.
    [[nodiscard]] std::vector<std::string> others() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder())) {
            const std::string name = entry.path().filename().string();
            if (name != "data.csv" && name != "s" && name != "ready")
                names.push_back(name);
        }
        return names;
    }

    std::string text_;
};

TEST_F(InterruptTest, LongCallsEndSoon) {
    // Each goes on for as long as nobody stops it; a signal comes somewhere in a call.
    const char* const calls[] = {"T.Sort(\"Name\"); T.Sort(\"Name Desc\")", "T = LoadCsv(\"data.csv\")",
                                 "SaveCsv(\"out.csv\", T)", "SaveJson(\"out.json\", T)",
                                 "C = T.Copy(); C.GroupBy(\"Name\", \"Number\")"};
    int signal = 0;
    for (const char* const call : calls) {
        Running program(file("s", text_ + "While True Do " + call + " EndDo"), folder());
        ASSERT_TRUE(program.isReady()) << call;
        std::this_thread::sleep_for(30ms);
        program.send(std::array{SIGINT, SIGTERM, SIGHUP}[static_cast<std::size_t>(signal++ % 3)]);
        EXPECT_TRUE(is_interrupted(program.ended(5s))) << call; // on a busy machine
        for (const std::string& name : others())
            EXPECT_TRUE(name == "out.csv" || name == "out.json") << name;
    }
}

TEST_F(InterruptTest, TheWaitForInputEnds) {
    Running program(file("s", "SaveText(\"ready\", \"\"); T = LoadCsv(\"-\")"), folder()); // nothing comes
    ASSERT_TRUE(program.isReady());
    std::this_thread::sleep_for(50ms);
    program.send(SIGINT);
    EXPECT_TRUE(is_interrupted(program.ended(5s)));
}

TEST_F(InterruptTest, AQueryEndsWhileItReads) {
    Running program({"corehost", "query", "-", "Table"}, folder());
    ASSERT_TRUE(program.hasRead("Name,Number\r\na,1\r\n"));
    program.send(SIGINT);
    EXPECT_TRUE(is_interrupted(program.ended(5s)));
}

TEST(InterruptsTest, ASecondSignalEndsWhatDoesNotListen) {
    const auto code_after = [](int signals) {
        const ::pid_t child = ::fork();
        if (child == 0) {
            const Interrupts interrupts;
            for (int i = 0; i < signals; ++i)
                ::raise(SIGTERM);
            try {
                interrupts.check();
            } catch (const Interrupted&) {
                ::_exit(1);
            }
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    EXPECT_EQ(code_after(0), 0);
    EXPECT_EQ(code_after(1), 1);
    EXPECT_EQ(code_after(2), 130);
}

TEST_F(InterruptTest, NothingTemporaryStaysWhateverTheSignal) {
    for (const int signal : {SIGKILL, SIGQUIT, SIGABRT, SIGTERM}) {
        Running program(file("s", text_ + "While True Do SaveCsv(\"out.csv\", T) EndDo"), folder());
        ASSERT_TRUE(program.isReady());
        std::this_thread::sleep_for(100ms);
        program.send(signal);
        EXPECT_TRUE(program.ended(5s)) << signal;
        for (const std::string& name : others()) {
            // Between the two calls that replace a file; the next program puts it in its place.
            const bool mayStay = signal == SIGKILL && name == ".core-out.csv";
            EXPECT_TRUE(mayStay || name == "out.csv") << name << " after " << signal;
        }
    }
}

} // namespace
} // namespace host
