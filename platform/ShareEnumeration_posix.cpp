#include "platform/ShareEnumeration.h"

#include <arpa/inet.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>

#include "platform/SambaClient_posix.h"

namespace vardel {

namespace {

constexpr int kTimeoutMs = 10000;
// Left to itself the library first tries NetBIOS, where it waits 20 s for a server that accepts and never answers,
// whatever its time-out is: longer than the end of a run waits for its threads.
constexpr u16 kSmbPort = 445;
constexpr char kServerMark[] = "\\\\";
// The share type words (STYPE_DISKTREE and so on).
constexpr u32 kDiskType = 0, kPrintQueueType = 1, kDeviceType = 2, kIpcType = 3;

struct TypeRow {
    unsigned directoryType;  // as the library tells it
    u32 typeWord;
};
constexpr TypeRow kTypes[] = {{SMBC_FILE_SHARE, kDiskType},
                              {SMBC_PRINTER_SHARE, kPrintQueueType},
                              {SMBC_COMMS_SHARE, kDeviceType},
                              {SMBC_IPC_SHARE, kIpcType}};

bool FindTypeWord(unsigned directoryType, u32& typeWord) {
    for (const TypeRow& row : kTypes) {
        if (row.directoryType != directoryType) continue;
        typeWord = row.typeWord;
        return true;
    }
    return false;
}

// The library's texts are UTF-8.
std::string CutText(const char* text, std::size_t length) {
    length = strnlen(text, length);
    if (length > kLongestShareText) {
        length = kLongestShareText;
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xc0) == 0x80) --length;
    }
    return {text, length};
}

// The address of "\\ADDRESS"; false for what isn't dotted decimal: only that may get into the place to open.
bool AddressOf(const char* server, std::string& address) {
    if (std::strncmp(server, kServerMark, sizeof kServerMark - 1) != 0) return false;
    address = server + sizeof kServerMark - 1;
    in_addr parsed;
    return inet_pton(AF_INET, address.c_str(), &parsed) == 1;
}

// No user and no password: hosts are asked as a guest.
void GiveNoPassword(SMBCCTX*, const char*, const char*, char*, int, char* user, int userSize, char* password,
                    int passwordSize) {
    if (userSize > 0) *user = 0;
    if (passwordSize > 0) *password = 0;
}

void KeepSilent(void*, int, const char*) {}

class Connection {
  public:
    explicit Connection(const SambaClient& client) : client_(client), context_(client.newContext()) {
        if (!context_) return;
        client_.setLogCallback(context_, nullptr, &KeepSilent);
        client_.setDebug(context_, 0);
        client_.setTimeout(context_, kTimeoutMs);
        client_.setPort(context_, kSmbPort);
        client_.setAuthentication(context_, &GiveNoPassword);
        ready_ = client_.initContext(context_) != nullptr;
    }
    ~Connection() {
        if (!context_) return;
        if (folder_) client_.closeFolderOf(context_)(context_, folder_);
        client_.freeContext(context_, 1);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // 0, or the system's error number.
    int Open(const std::string& address) {
        if (!ready_) return ENOMEM;
        errno = 0;
        folder_ = client_.openFolderOf(context_)(context_, ("smb://" + address + "/").c_str());
        if (folder_) return 0;
        return errno != 0 ? errno : EIO;
    }
    const smbc_dirent* Next() { return client_.readFolderOf(context_)(context_, folder_); }

  private:
    const SambaClient& client_;
    SMBCCTX* const context_;
    SMBCFILE* folder_ = nullptr;
    bool ready_ = false;
};

class SambaShareEnumeration : public ShareEnumeration {
  public:
    u32 Enumerate(const char* server, u32&, std::vector<ShareEntry>& entries) override {
        std::lock_guard hold(guard_);
        std::string address;
        if (!AddressOf(server, address)) return EINVAL;
        const SambaClient* client = LoadSambaClient();
        if (!client) return ENOSYS;
        // The library sets itself up with the first connection and takes itself down with the last one, each time leaving
        // a little memory behind. One that is never used and never ended keeps it up.
        [[maybe_unused]] static const Connection* const held = new Connection(*client);
        Connection connection(*client);
        if (const int failure = connection.Open(address)) return static_cast<u32>(failure);
        while (const smbc_dirent* found = connection.Next()) {
            ShareEntry entry;
            if (!FindTypeWord(found->smbc_type, entry.type)) continue;
            entry.name = CutText(found->name, found->namelen);
            if (found->comment) entry.remark = CutText(found->comment, found->commentlen);
            entries.push_back(std::move(entry));
        }
        return kAllShares;
    }

  private:
    std::mutex guard_;  // the library serves one thread at a time
};

// An error number must never look like "more data".
static_assert(ENOTRECOVERABLE < kMoreShares);

}  // namespace

ShareEnumeration& SystemShareEnumeration() {
    static SambaShareEnumeration enumeration;
    return enumeration;
}

}  // namespace vardel
