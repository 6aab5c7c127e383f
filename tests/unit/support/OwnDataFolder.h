// A local application data folder of the test's own, as far as the system lets a program choose one: Linux by
// its environment; Windows has one for each user, where a test removes what it made.
#pragma once

#include <memory>

namespace vardel::test {

class OwnDataFolder {
  public:
    OwnDataFolder();
    ~OwnDataFolder();

  private:
    struct Place;
    std::unique_ptr<Place> place_;
};

}  // namespace vardel::test
