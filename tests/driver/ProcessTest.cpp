// What a process does around the library: it forks before and after the library's start, and ends at any moment.
#include "EveryGame.h"
#include "GameProcess.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <dlfcn.h>
#include <functional>
#include <sys/wait.h>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__OPTIMIZE__)
constexpr int kEnds = 24;
#else
constexpr int kEnds = 200;
#endif

/**
 * Changes what the hooks watch, and shows it.
 * @return whether there was something to swap still
 */
bool play(const Context& context) {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisable(GL_BLEND);
    glViewport(0, 0, 64, 64);
    return context.swap();
}

pid_t startChild(const std::function<int()>& main) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60); // one that hangs is a failure, too
        std::exit(main());
    }
    return child;
}

int statusOf(pid_t child) {
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

} // namespace

// Catches a process that crashes or hangs on its way out: statics of the library's go while a thread is inside a
// hook.
TEST(EndingProcess, StandsThreadsThatAreAtWork) {
    const auto end = [](const EveryGame& played, int run) {
        // The first to be registered is the last to be called: after it the loader takes the driver itself away.
        std::atexit([] {
            usleep(20'000); // what the library left is used on
            _exit(3);
        });
        auto* game = new GameProcess(played.package, played.configuration); // no destructor runs on the way out
        game->root().write("/data/system/mcd/gameInfo", "");
        static std::atomic<bool> isPlaying{false};
        std::thread([] {
            const Context context;
            context.makeCurrent();
            for (;;) {
                play(context);
                isPlaying = true;
                isPlaying.notify_one();
            }
        }).detach();
        isPlaying.wait(false);
        usleep(static_cast<useconds_t>(run * 997 % 20'000)); // anywhere in the frames that follow
        std::filesystem::remove_all(getenv("ORVEL_ROOT"));
        return 0;
    };
    std::array<pid_t, 2> children{};
    for (int run = 0; run < kEnds + 2; ++run) {
        pid_t& child = children[static_cast<size_t>(run % 2)];
        if (child) {
            EXPECT_EQ(statusOf(child), 3 << 8) << "run " << run - 2;
        }
        child = run < kEnds ? startChild([&] { return end(kEveryGame[run % 6], run); }) : 0;
    }
}

class ForkingProcess : public testing::TestWithParam<EveryGame> {};

INSTANTIATE_TEST_SUITE_P(All, ForkingProcess, testing::ValuesIn(kEveryGame),
                         [](const auto& game) { return std::string(game.param.name); });

// Catches a library that decides at its loading what it is for: a device's first process loads it for all others.
TEST_P(ForkingProcess, ChildrenStartOnTheirOwn) {
    const std::string library =
        std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib/liborvel.so";
    ASSERT_TRUE(dlopen(library.c_str(), RTLD_NOW)) << dlerror();
    const pid_t child = startChild([] {
        const GameProcess game(GetParam().package, GetParam().configuration);
        const Context context;
        context.makeCurrent();
        return !play(context) || game.log().find(std::string("cmdline: ") + GetParam().package) == std::string::npos;
    });
    EXPECT_EQ(statusOf(child), 0);
}

// Catches a child that is left with files, sockets and threads of its parent's: it ends, or runs another program.
TEST_P(ForkingProcess, ChildrenInheritNothing) {
    const GameProcess game(GetParam().package, GetParam().configuration);
    game.root().write("/data/system/mcd/gameInfo", "");
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    for (int frame = 0; frame < 20; ++frame) {
        EXPECT_TRUE(play(context));
    }
    int lines[2];
    ASSERT_EQ(pipe(lines), 0);
    const pid_t other = fork();
    if (other == 0) {
        dup2(lines[1], STDOUT_FILENO);
        execlp("ls", "ls", "-l", "/proc/self/fd", nullptr);
        _exit(1);
    }
    const pid_t child = startChild([] { return 0; });
    close(lines[1]);
    const std::string open = readToEnd(lines[0]);
    EXPECT_EQ(statusOf(other), 0);
    EXPECT_THAT(open, testing::AllOf(testing::HasSubstr("pipe:"), testing::Not(testing::HasSubstr("socket:")),
                                     testing::Not(testing::HasSubstr("inotify")),
                                     testing::Not(testing::HasSubstr(getenv("ORVEL_ROOT")))));
    EXPECT_EQ(statusOf(child), 0);
    EXPECT_TRUE(play(context));
}
