// The columns of an open host view: the fixed ones that the settings show, then those that plugins define.
//
// Main thread, which is where plugins are called. A LoadedPlugin* stays valid until the plugin table ends.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "toolkit/PixelRect.h"
#include "views/HostCells.h"

namespace vardel {

struct HostViewColumn {
    std::string title;
    int width;                             // pixels
    i32 format = 0;                        // alignment: 0 left, 1 right, 2 centre
    HostColumn fixed = HostColumn::Trust;  // of a fixed column
    LoadedPlugin* plugin = nullptr;        // of a plugin's column; null for a fixed one
    i32 pluginColumn = 0;                  // the plugin's own index
};

// Widths that the user gave to columns, by their titles. They live as long as the program and are stored nowhere.
class ColumnWidths {
  public:
    void Keep(const std::string& title, int width) { widths_[title] = width; }
    int WidthOf(const std::string& title, int otherwise) const {
        const auto found = widths_.find(title);
        return found == widths_.end() ? otherwise : found->second;
    }

  private:
    std::unordered_map<std::string, int> widths_;
};

// In their order from left to right. Kept widths count only while the settings say so. `language`: the module of the
// view's texts. `dpi`: dots per inch of the display, for which the default widths are scaled; kept ones are as they were.
std::vector<HostViewColumn> HostViewColumns(VardelData& data, ModuleHandle language, const ColumnWidths& kept,
                                            int dpi = kPlainDpi);

std::string HostViewCellText(const HostViewColumn& column, const HostRecord& host, const VardelData& data,
                             ModuleHandle language);

// Place in the view's image list; -1: none.
int HostViewCellIcon(const HostViewColumn& column, const HostRecord& host);

// Below 0, 0 or above 0, in that direction. A plugin is asked for its own columns.
int CompareInColumn(const HostViewColumn& column, const HostRecord& first, const HostRecord& second, bool ascending);

// The width for a column whose widest text takes so many pixels, when its divider is clicked twice.
constexpr int kWidthOfHeader = -1;  // the column is as wide as its header
int FittingWidth(const HostViewColumn& column, int widestText, int dpi = kPlainDpi);

}  // namespace vardel
