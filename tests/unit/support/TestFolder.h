// A folder of a test's own, with a name of its own, gone when the test is.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace vardel::test {

class TestFolder {
  public:
    TestFolder() {
        std::random_device random;
        path_ = std::filesystem::temp_directory_path() /
                ("vardel-test-" + std::to_string(random()) + "-" + std::to_string(random()));
        std::filesystem::create_directories(path_);
    }
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    // The full path of `name` inside, with '/' between folders on every system.
    std::string Path(const std::string& name = "") const {
        std::string path = path_.generic_string();
        return name.empty() ? path : path + "/" + name;
    }
    // Byte for byte; makes the folders above.
    std::string Write(const std::string& name, const std::string& bytes) const {
        const std::string path = Path(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    // Byte for byte; empty when there is no such file.
    std::string Read(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::filesystem::path path_;
};

}  // namespace vardel::test
