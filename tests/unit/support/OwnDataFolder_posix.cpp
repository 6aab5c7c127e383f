#include "tests/unit/support/OwnDataFolder.h"

#include "tests/unit/support/EnvironmentVariable_posix.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel::test {

struct OwnDataFolder::Place {
    TestFolder folder;
    // One that isn't there yet: whoever writes makes it.
    EnvironmentVariable variable{"XDG_DATA_HOME", folder.Path("data/local").c_str()};
};

OwnDataFolder::OwnDataFolder() : place_(std::make_unique<Place>()) {}
OwnDataFolder::~OwnDataFolder() = default;

}  // namespace vardel::test
