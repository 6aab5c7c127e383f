#include "tests/unit/support/OwnDataFolder.h"

namespace vardel::test {

struct OwnDataFolder::Place {};

OwnDataFolder::OwnDataFolder() = default;
OwnDataFolder::~OwnDataFolder() = default;

}  // namespace vardel::test
