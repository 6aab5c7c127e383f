#include "platform/ShareEnumeration_win.h"

#include <cwchar>

namespace vardel {

namespace {

constexpr DWORD kLevel = 502;

// What the network API hands out, given back to it with the scope. Null is nothing to give back.
class AnswerBuffer {
  public:
    explicit AnswerBuffer(const NetworkApi& api) : api_(api) {}
    ~AnswerBuffer() {
        if (data_) api_.bufferFree(data_);
    }
    AnswerBuffer(const AnswerBuffer&) = delete;
    AnswerBuffer& operator=(const AnswerBuffer&) = delete;

    LPBYTE* Place() { return &data_; }
    const SHARE_INFO_502* Shares() const { return reinterpret_cast<const SHARE_INFO_502*>(data_); }

  private:
    const NetworkApi& api_;
    LPBYTE data_ = nullptr;
};

std::wstring Widen(const char* text) {
    const int size = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(size > 0 ? static_cast<std::size_t>(size) : 1, L'\0');
    if (size > 0) MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), size);
    return wide;
}

ShareEntry EntryOf(const SHARE_INFO_502& share) {
    return {.name = NarrowShareText(share.shi502_netname),
            .type = share.shi502_type,
            .remark = NarrowShareText(share.shi502_remark),
            .permissions = share.shi502_permissions,
            .maxUses = share.shi502_max_uses,
            .currentUses = share.shi502_current_uses,
            .path = NarrowShareText(share.shi502_path)};
}

}  // namespace

std::string NarrowShareText(const wchar_t* text) {
    if (!text) return {};
    char bytes[kLongestShareText];
    // No character takes less than a byte. What doesn't fit is left out from the end, never half a character.
    std::size_t length = wcsnlen(text, kLongestShareText);
    for (; length > 0; --length) {
        if (IS_HIGH_SURROGATE(text[length - 1])) continue;
        const int size = WideCharToMultiByte(CP_ACP, 0, text, static_cast<int>(length), bytes, sizeof bytes, nullptr,
                                             nullptr);
        if (size > 0) return {bytes, static_cast<std::size_t>(size)};
    }
    return {};
}

u32 WindowsShareEnumeration::Enumerate(const char* server, u32& resumeHandle, std::vector<ShareEntry>& entries) {
    std::wstring wideServer = Widen(server);
    AnswerBuffer buffer(api_);
    DWORD entriesRead = 0;
    DWORD totalEntries = 0;
    DWORD resume = resumeHandle;
    const NET_API_STATUS result = api_.shareEnum(wideServer.data(), kLevel, buffer.Place(), MAX_PREFERRED_LENGTH,
                                                 &entriesRead, &totalEntries, &resume);
    resumeHandle = resume;
    if (result != kAllShares && result != kMoreShares) return result;
    const SHARE_INFO_502* shares = buffer.Shares();
    for (DWORD i = 0; shares && i < entriesRead; ++i) entries.push_back(EntryOf(shares[i]));
    return result;
}

ShareEnumeration& SystemShareEnumeration() {
    static WindowsShareEnumeration enumeration({&::NetShareEnum, &::NetApiBufferFree});
    return enumeration;
}

static_assert(kAllShares == NERR_Success && kMoreShares == ERROR_MORE_DATA);
static_assert(sizeof(wchar_t) == 2);

}  // namespace vardel
