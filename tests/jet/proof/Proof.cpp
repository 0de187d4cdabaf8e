#include "jet/proof/Proof.h"

#include <cstdio>
#include <stdexcept>

namespace wendel::jet::proof {

std::set<std::string> findings(const std::string& path) {
    Database database(path, Access::kReadOnly, File::kDefaultCacheBytes, File::Opening::kReading);
    const File::Reading reading(database.file());
    const std::vector<std::string> found = checkFile(database);
    return {found.begin(), found.end()};
}

std::string newFindings(const std::string& path, const std::set<std::string>& before) {
    std::string lines;
    for (const std::string& finding : findings(path)) {
        if (!before.contains(finding)) lines += finding + "\n";
    }
    return lines;
}

bool haveMdbtools() { return std::system("mdb-export --version >/dev/null 2>&1") == 0; }

std::vector<std::vector<std::string>> exported(const std::string& path, const std::string& table) {
    // No text has these.
    const std::string behindCell = "<~|", behindRow = "<~~\n";
    const std::string command = "LC_ALL=C.UTF-8 mdb-export -H -Q -b hex -d '" + behindCell + "' -R '" +
                                behindRow + "' -T '%Y-%m-%d %H:%M:%S' '" + path + "' '" + table + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    if (!pipe) throw std::runtime_error(command);
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> row(1);
    for (int c = std::getc(pipe.get()); c != EOF; c = std::getc(pipe.get())) {
        std::string& cell = row.back() += static_cast<char>(c);
        if (cell.ends_with(behindCell)) {
            cell.resize(cell.size() - behindCell.size());
            row.emplace_back();
        } else if (cell.ends_with(behindRow)) {
            cell.resize(cell.size() - behindRow.size());
            rows.push_back(std::move(row));
            row = {""};
        }
    }
    return rows;
}

Variant single(Datenbank& database, const std::string& sql) {
    return database.openRecordset(sql, kSnapshot, kForwardOnly)->feld(0);
}

}  // namespace wendel::jet::proof
