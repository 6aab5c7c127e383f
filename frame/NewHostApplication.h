// Which application the user wants started for a host that has just shown up. A function of values.
#pragma once

namespace vardel {

enum class NewHostApplication { None, Trusted, Other };

struct NewHostRule {
    bool hasTrustedApp;    // an application for trusted hosts is named
    bool hasOtherApp;      // one for the others
    bool otherDistrusted;  // the latter for distrusted hosts; with both flags clear for all
    bool otherUnknown;     // the latter for hosts that aren't distrusted
};

// `trusted` and `distrusted`: the host's address stands in that table. While no application is named for trusted
// hosts, they are taken like all the others: that is wanted.
constexpr NewHostApplication ChooseApplication(const NewHostRule& rule, bool trusted, bool distrusted) {
    if (rule.hasTrustedApp && trusted) return NewHostApplication::Trusted;
    if (!rule.hasOtherApp) return NewHostApplication::None;
    if (!rule.otherDistrusted && !rule.otherUnknown) return NewHostApplication::Other;
    return (distrusted ? rule.otherDistrusted : rule.otherUnknown) ? NewHostApplication::Other
                                                                  : NewHostApplication::None;
}

}  // namespace vardel
