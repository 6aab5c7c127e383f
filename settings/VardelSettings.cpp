#include "settings/VardelSettings.h"

namespace vardel {

VardelSettings::VardelSettings()
    : Visualization(1),
      MACSpoofingVisualizationStyle(1),
      WatchInterval(60),
      WatchConfirm(1),
      WatchVisualization(1),
      ViewFilterOptions(7),
      ReportInterval(300),
      ViewGrayTime(240),
      MACListVersion(1) {}

}  // namespace vardel
