// Programs are started by posix_spawn with their arguments one by one; documents, folders and addresses go to the
// desktop's opener (xdg-open). No command line is ever put together for a command interpreter.
#include "platform/Shell.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "platform/CommandLine.h"

namespace vardel {

namespace {

constexpr char kOpener[] = "xdg-open";

bool HasMode(const std::string& path, mode_t mode) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && (status.st_mode & S_IFMT) == mode;
}

bool IsProgram(const std::string& path) { return HasMode(path, S_IFREG) && access(path.c_str(), X_OK) == 0; }

// Where the name's program lies; empty when there is none. As elsewhere a name without a folder is searched for in
// the PATH, except that the current folder is never on it.
std::string FindProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) return IsProgram(name) ? name : "";
    const char* variable = std::getenv("PATH");
    const std::string folders = variable ? variable : "/usr/local/bin:/usr/bin:/bin";
    for (std::size_t begin = 0; begin <= folders.size();) {
        const std::size_t end = std::min(folders.find(':', begin), folders.size());
        const std::string folder = folders.substr(begin, end - begin);
        if (folder.starts_with('/') && IsProgram(folder + "/" + name)) return folder + "/" + name;
        begin = end + 1;
    }
    return {};
}

// A scheme (RFC 3986, section 3.1) and "://".
bool IsAddress(const std::string& text) {
    constexpr char kSchemeCharacters[] =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-.";
    const std::size_t scheme = text.find_first_not_of(kSchemeCharacters);
    return scheme != std::string::npos && scheme > 0 && text.compare(scheme, 3, "://") == 0;
}

// The full path of what is there, so that no name is taken for an option; empty when nothing is.
std::string FullPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> full(realpath(path.c_str(), nullptr), &std::free);
    return full ? full.get() : "";
}

// What a child must not inherit: our signal mask and ignored signals, our session with its terminal, our files.
class SpawnRules {
  public:
    SpawnRules() {
        posix_spawnattr_init(&attributes);
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    }
    ~SpawnRules() {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnRules(const SpawnRules&) = delete;
    SpawnRules& operator=(const SpawnRules&) = delete;

    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t files;
};

// 0, or what the system answered.
int Spawn(const std::string& program, const std::vector<std::string>& arguments, pid_t& child) {
    const SpawnRules rules;
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    return posix_spawn(&child, program.c_str(), &rules.files, &rules.attributes, words.data(), environ);
}

// Takes the ends of started programs, so that none stays behind as a zombie. Each has a thread that does nothing but
// wait for it, which is little beside the program itself; one for which no thread could be had is asked about when
// the next one starts.
class Children {
  public:
    void WaitFor(pid_t child) {
        const std::lock_guard hold(guard_);
        std::erase_if(unwatched_, [](pid_t other) { return waitpid(other, nullptr, WNOHANG) != 0; });
        try {
            std::thread([child] {
                while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {}
            }).detach();
        } catch (const std::system_error&) {
            unwatched_.push_back(child);
        }
    }

  private:
    std::mutex guard_;
    std::vector<pid_t> unwatched_;
};

class PosixShell : public Shell {
  public:
    std::vector<std::string> ParameterPieces(const std::string& parameters) override {
        return SplitCommandLine(parameters);
    }

    bool Execute(ShellVerb verb, const std::string& file, const std::vector<std::string>& pieces) override {
        if (file.empty()) return false;
        if (verb != ShellVerb::Open) return HasMode(file, S_IFDIR) && OpenByDesktop(FullPath(file));
        if (IsAddress(file)) return OpenByDesktop(file);
        const std::string program = FindProgram(file);
        if (!program.empty()) {
            const int result = Start(program, pieces);
            // Some file systems mark every file as a program; what isn't one is a document.
            if (result != ENOEXEC) return result == 0;
        }
        return OpenByDesktop(FullPath(file));
    }

  private:
    int Start(const std::string& program, const std::vector<std::string>& arguments) {
        pid_t child = -1;
        const int result = Spawn(program, arguments, child);
        if (result == 0) children_.WaitFor(child);
        return result;
    }

    // Whether the opener could be started; what becomes of the document is between it and the user.
    bool OpenByDesktop(const std::string& target) {
        if (target.empty()) return false;
        const std::string opener = FindProgram(kOpener);
        return !opener.empty() && Start(opener, {target}) == 0;
    }

    Children children_;
};

}  // namespace

// Never destroyed: threads that wait for a program may outlive the end of the run.
Shell& SystemShell() {
    static PosixShell& shell = *new PosixShell;
    return shell;
}

}  // namespace vardel
