// ReportDocument: a report while it comes into being: a template's text whose tags and blocks are filled in.
//
// Functions of values, for one thread. The time is linear in the length of the template and the report together.
// What is put in for a tag is data: it is never searched for tags or markers, so a host can't open or close a block
// by its name.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Types.h"

namespace vardel {

struct ReportCounts {
    u32 hosts = 0, trusted = 0, distrusted = 0, unknown = 0, watched = 0;
};

// In the order in which a report expands them.
enum class ReportBlock { Hosts, TrustedHosts, DistrustedHosts, UnknownHosts, WatchedHosts, ShareAccesses };

// What the values of a row are, by block.
enum HostTag { kHostName, kHostIp, kHostMac, kHostOs, kHostVendor, kHostTags };
enum WatchedTag { kWatchedName, kWatchedIp, kWatchedState, kWatchedTags };
enum ShareTag { kShareHost, kShareName, kShareUser, kShareTags };

// A block's body, cut at its tags.
class ReportRow {
  public:
    ReportRow(std::string_view body, std::span<const std::string_view> tags);

    // Appends the body with a value in the place of each tag; an empty value is one blank.
    void AppendTo(std::string& text, std::span<const std::string_view> values) const;

  private:
    static constexpr int kPlain = -1;
    struct Piece {
        std::string_view text;
        int tag = kPlain;
    };
    std::vector<Piece> pieces_;
};

class ReportDocument {
  public:
    // One row, with a value for each tag of its block.
    using AddRow = std::function<void(std::span<const std::string_view> values)>;

    // A zero byte ends the text.
    explicit ReportDocument(std::string_view text);

    bool IsEmpty() const { return text_.empty(); }

    // The count tags, wherever they stand.
    void PutCounts(const ReportCounts& counts);

    // The first block of the kind: `rows` is called once to add its rows. A block without both of its markers, or
    // whose end stands ahead of its begin, is left as it is, and `rows` is not called.
    void Expand(ReportBlock block, const std::function<void(const AddRow& add)>& rows);

    // The report as it has come to be.
    std::string Text() const;

  private:
    // A zero byte, which no text holds, stands around each value and behind each of its characters that could begin a
    // tag or a marker: so nothing is found in a value or across its ends.
    std::string text_;
};

}  // namespace vardel
