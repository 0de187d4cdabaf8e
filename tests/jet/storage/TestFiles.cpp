#include "jet/storage/TestFiles.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace wendel::jet::test {

std::string dataPath(const std::string& name) {
    return std::string(WENDEL_SOURCE_DIR) + "/../shared/data/" + name;
}

bool haveData() { return std::filesystem::exists(dataPath("typen.mdb")); }

std::vector<std::string> expectations(const std::vector<std::string>& arguments) {
    std::string command = "python3 '" WENDEL_SOURCE_DIR "/tests/jet/storage/expectations.py'";
    for (const std::string& argument : arguments)
        command += " '" + argument + "'";
    const TemporaryCopy output;
    if (std::system((command + " > '" + output.path() + "'").c_str()) != 0) throw std::runtime_error(command);
    std::ifstream in(output.path());
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::string hex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const char c : bytes)
        (text += kDigits[static_cast<std::uint8_t>(c) >> 4]) += kDigits[static_cast<std::uint8_t>(c) & 15];
    return text;
}

TemporaryCopy::TemporaryCopy() {
    std::string pattern = (std::filesystem::temp_directory_path() / "wendel-storage-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = pattern;
    path_ = folder_ + "/probe.mdb";
}

TemporaryCopy::~TemporaryCopy() {
    std::error_code ignored;
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(folder_, ignored);
}

void TemporaryCopy::write(std::string_view bytes) const {
    std::ofstream(path_, std::ios::binary | std::ios::trunc)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace wendel::jet::test
