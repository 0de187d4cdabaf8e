#include "jet/proof/Proof.h"

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

Variant single(Datenbank& database, const std::string& sql) {
    return database.openRecordset(sql, kSnapshot, kForwardOnly)->feld(0);
}

}  // namespace wendel::jet::proof
