#include "frame/ReportDocument.h"

#include <algorithm>

namespace vardel {

namespace {

constexpr char kFence = '\0';
constexpr std::string_view kBeginnings = "%<";  // of every tag and every marker
constexpr std::string_view kEmptyValue = " ";

struct CountTag {
    std::string_view tag;
    u32 ReportCounts::*count;
};

constexpr CountTag kCountTags[] = {
    {"%VDL_HOSTCOUNT%", &ReportCounts::hosts},
    {"%VDL_HOSTCOUNT_TRUST%", &ReportCounts::trusted},
    {"%VDL_HOSTCOUNT_DISTRUST%", &ReportCounts::distrusted},
    {"%VDL_HOSTCOUNT_UNKNOWN%", &ReportCounts::unknown},
    {"%VDL_HOSTCOUNT_WATCHED%", &ReportCounts::watched},
};

constexpr std::array<std::string_view, kHostTags> kTagsOfHosts = {
    "%VDL_HOST_NAME%", "%VDL_HOST_IP%", "%VDL_HOST_MAC%", "%VDL_HOST_OS%", "%VDL_HOST_VENDOR%"};
constexpr std::array<std::string_view, kWatchedTags> kTagsOfWatchedHosts = {"%VDL_HOST_NAME%", "%VDL_HOST_IP%",
                                                                            "%VDL_HOST_STATE%"};
constexpr std::array<std::string_view, kShareTags> kTagsOfShareAccesses = {"%VDL_SHARE_HOST%", "%VDL_SHARE_NAME%",
                                                                           "%VDL_SHARE_USER%"};

struct BlockForm {
    std::string_view begin, end;
    std::span<const std::string_view> tags;
};

// By ReportBlock.
constexpr BlockForm kBlocks[] = {
    {"<VDL_HOSTS - begin>", "<VDL_HOSTS - end>", kTagsOfHosts},
    {"<VDL_HOSTS_TRUSTED - begin>", "<VDL_HOSTS_TRUSTED - end>", kTagsOfHosts},
    {"<VDL_HOSTS_DISTRUSTED - begin>", "<VDL_HOSTS_DISTRUSTED - end>", kTagsOfHosts},
    {"<VDL_HOSTS_UNKNOWN - begin>", "<VDL_HOSTS_UNKNOWN - end>", kTagsOfHosts},
    {"<VDL_HOSTS_WATCHED - begin>", "<VDL_HOSTS_WATCHED - end>", kTagsOfWatchedHosts},
    {"<VDL_SHARE_ACCESS - begin>", "<VDL_SHARE_ACCESS - end>", kTagsOfShareAccesses},
};

// A report of many hosts is looked through for each marker in turn: long steps pay.
std::size_t Find(std::string_view text, std::string_view wanted) {
    const auto found =
        std::search(text.begin(), text.end(), std::boyer_moore_horspool_searcher(wanted.begin(), wanted.end()));
    return found == text.end() ? std::string_view::npos : static_cast<std::size_t>(found - text.begin());
}

void ReplaceAll(std::string& text, std::string_view wanted, std::string_view replacement) {
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, done)) {
        result.append(text, done, at - done);
        result += replacement;
        done = at + wanted.size();
    }
    if (done == 0) return;
    result.append(text, done);
    text = std::move(result);
}

void AppendValue(std::string& text, std::string_view value) {
    value = value.substr(0, value.find(kFence));
    if (value.empty()) value = kEmptyValue;
    text += kFence;
    for (std::size_t at = value.find_first_of(kBeginnings); at != std::string_view::npos;
         at = value.find_first_of(kBeginnings)) {
        text.append(value.substr(0, at + 1));
        text += kFence;
        value.remove_prefix(at + 1);
    }
    text += value;
    text += kFence;
}

}  // namespace

// Tag by tag over what is still plain text, as if each were replaced in the whole body before the next.
ReportRow::ReportRow(std::string_view body, std::span<const std::string_view> tags) : pieces_{{body}} {
    for (std::size_t tag = 0; tag < tags.size(); ++tag) {
        std::vector<Piece> cut;
        for (Piece piece : pieces_) {
            while (piece.tag == kPlain) {
                const std::size_t at = piece.text.find(tags[tag]);
                if (at == std::string_view::npos) break;
                cut.push_back({piece.text.substr(0, at)});
                cut.push_back({{}, static_cast<int>(tag)});
                piece.text.remove_prefix(at + tags[tag].size());
            }
            cut.push_back(piece);
        }
        pieces_ = std::move(cut);
    }
}

void ReportRow::AppendTo(std::string& text, std::span<const std::string_view> values) const {
    for (const Piece& piece : pieces_) {
        if (piece.tag == kPlain)
            text += piece.text;
        else
            AppendValue(text, values[static_cast<std::size_t>(piece.tag)]);
    }
}

ReportDocument::ReportDocument(std::string_view text) : text_(text.substr(0, text.find(kFence))) {}

void ReportDocument::PutCounts(const ReportCounts& counts) {
    for (const CountTag& tag : kCountTags) ReplaceAll(text_, tag.tag, std::to_string(counts.*tag.count));
}

void ReportDocument::Expand(ReportBlock block, const std::function<void(const AddRow& add)>& rows) {
    const BlockForm& form = kBlocks[static_cast<std::size_t>(block)];
    const std::string_view text = text_;
    const std::size_t begin = Find(text, form.begin);
    if (begin == std::string_view::npos) return;
    // Wanted: the first end marker of all, not the first behind the begin.
    const std::size_t end = Find(text, form.end);
    if (end == std::string_view::npos || end <= begin) return;

    const std::size_t bodyBegin = begin + form.begin.size();
    const ReportRow row(text.substr(bodyBegin, end - bodyBegin), form.tags);
    std::string result(text.substr(0, begin));
    rows([&](std::span<const std::string_view> values) { row.AppendTo(result, values); });
    result += text.substr(end + form.end.size());
    text_ = std::move(result);
}

std::string ReportDocument::Text() const {
    std::string text;
    text.reserve(text_.size());
    std::string_view rest = text_;
    for (std::size_t at = rest.find(kFence); at != std::string_view::npos; at = rest.find(kFence)) {
        text += rest.substr(0, at);
        rest.remove_prefix(at + 1);
    }
    text += rest;
    return text;
}

}  // namespace vardel
