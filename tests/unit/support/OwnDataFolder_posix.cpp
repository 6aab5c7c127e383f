#include "tests/unit/support/OwnDataFolder.h"

#include "tests/unit/support/TemporaryFolder_posix.h"

namespace vardel::test {

struct OwnDataFolder::Place {
    TemporaryFolder folder;
    // One that isn't there yet: whoever writes makes it.
    EnvironmentVariable variable{"XDG_DATA_HOME", folder.File("data/local").c_str()};
};

OwnDataFolder::OwnDataFolder() : place_(std::make_unique<Place>()) {}
OwnDataFolder::~OwnDataFolder() = default;

}  // namespace vardel::test
