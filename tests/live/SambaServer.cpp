#include "tests/live/SambaServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace vardel::test {

namespace {

constexpr char kProgram[] = "/usr/sbin/smbd";
constexpr u_int16_t kPort = 445;
constexpr std::chrono::seconds kPatience{30};

std::string UserName() {
    const passwd* user = getpwuid(getuid());
    return user ? user->pw_name : "root";
}

}  // namespace

SambaServer::SambaServer() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vardelwatch-samba-XXXXXX").string();
    if (mkdtemp(pattern.data())) folder_ = pattern;
}

SambaServer::~SambaServer() {
    Stop();
    std::error_code ignored;
    if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
}

void SambaServer::Configure(const std::string& globals, const std::string& shares) {
    // Put in place whole: the server may read it at any moment.
    const std::string fresh = folder_ + "/smb.conf.new";
    std::ofstream out(fresh);
    out << "[global]\n"
        << "server role = standalone server\nserver string = test\nmap to guest = Bad User\n"
        << "guest account = " << UserName() << "\n"
        << "interfaces = lo\nbind interfaces only = yes\nsmb ports = " << kPort << "\ndisable netbios = yes\n"
        << "passdb backend = tdbsam:" << folder_ << "/passdb.tdb\n"
        << "log file = " << folder_ << "/log.smbd\n"
        << "printing = bsd\nprintcap name = /dev/null\nload printers = no\nusershare max shares = 0\n";
    for (const char* kind : {"private dir", "lock directory", "state directory", "cache directory", "pid directory",
                             "ncalrpc dir", "binddns dir"})
        out << kind << " = " << folder_ << "\n";
    out << globals << "\n" << shares;
    out.close();
    std::filesystem::rename(fresh, folder_ + "/smb.conf");
}

bool SambaServer::Start(const std::string& globals, const std::string& shares) {
    if (folder_.empty()) return false;
    std::filesystem::create_directories(folder_ + "/files");
    Configure(globals, shares);
    const std::string configuration = "--configfile=" + folder_ + "/smb.conf";
    const std::string output = folder_ + "/output";
    const pid_t parent = getpid();
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    process_ = fork();
    if (process_ == 0) {
        setsid();
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) _exit(1);
        const int log = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(log, STDOUT_FILENO);
        dup2(log, STDERR_FILENO);
        // It wants to set groups even where it never changes its user; a machine may refuse that to everybody.
        setenv("LD_PRELOAD", "libuid_wrapper.so", 1);
        setenv("UID_WRAPPER", "1", 1);
        setenv("UID_WRAPPER_ROOT", "1", 1);
        execl(kProgram, kProgram, "--foreground", "--no-process-group", configuration.c_str(), nullptr);
        _exit(127);
    }
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!Listens()) {
        if (waitpid(process_, nullptr, WNOHANG) != 0) {
            process_ = -1;
            return false;
        }
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}

void SambaServer::Stop() {
    if (process_ <= 0) return;
    kill(process_, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (waitpid(process_, nullptr, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            continue;
        }
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        break;
    }
    // Its children are in the group that it led; they have become ours with its end.
    kill(-process_, SIGKILL);
    while (waitpid(-process_, nullptr, 0) > 0) {
    }
    process_ = -1;
}

std::string SambaServer::Log() const {
    std::ostringstream all;
    for (const char* name : {"/output", "/log.smbd"}) all << std::ifstream(folder_ + name).rdbuf();
    return all.str();
}

bool SambaServer::Listens() const {
    const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool listens = connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(client);
    return listens;
}

}  // namespace vardel::test
