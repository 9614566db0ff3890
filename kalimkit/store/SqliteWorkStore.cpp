#include "kalimkit/store/SqliteWorkStore.h"

#include <sqlite3.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstring>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "kalimkit/store/Database.h"
#include "kalimkit/store/WorkFiles.h"
#include "kalimkit/store/WorkLocks.h"

namespace kalim::store {

namespace {

// What `file` and others know the database by: "Kalm".
constexpr std::int64_t applicationId = 0x4B616C6D;
constexpr std::int64_t knownVersion = 1;
// Our own codes, beside SQLite's.
constexpr int isNewer = -1;
constexpr int isForeign = -2;

// NORMAL writes what survives the process without waiting for the disk, which would take longer
// than a frame; of the steps before a power cut the last may be lost, and the database never is.
// The log may grow to 40 MB before it is copied, which does wait.
constexpr const char* settings =
    "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA wal_autocheckpoint=10000;"
    "PRAGMA secure_delete=ON; PRAGMA foreign_keys=ON; PRAGMA temp_store=MEMORY;"
    "PRAGMA cell_size_check=ON;";

// The bytes stand last, so that a list need not read over them.
constexpr const char* tables =
    "CREATE TABLE works(id INTEGER PRIMARY KEY, picture TEXT NOT NULL, sha256 TEXT NOT NULL,"
    " began REAL NOT NULL, setUp TEXT NOT NULL, bytes BLOB NOT NULL);"
    "CREATE TABLE steps(work INTEGER NOT NULL REFERENCES works(id) ON DELETE CASCADE,"
    " number INTEGER NOT NULL, text TEXT NOT NULL, PRIMARY KEY(work, number)) WITHOUT ROWID;"
    "PRAGMA application_id=1264675949; PRAGMA user_version=1;";
static_assert(applicationId == 1264675949 && knownVersion == 1);

constexpr const char* summaries =
    "SELECT id, picture, sha256, began, (SELECT count(*) FROM steps WHERE work=id)"
    " FROM works ORDER BY began, id";

// Eight hexadecimal digits; nothing for any other text.
std::optional<std::int64_t> numberOf(const std::string& id) {
    std::uint32_t number = 0;
    const char* const end = id.data() + id.size();
    const auto [stop, error] = std::from_chars(id.data(), end, number, 16);
    if (id.size() != 8 || stop != end || error != std::errc()) return std::nullopt;
    return number;
}

std::string idOf(std::int64_t number) {
    constexpr const char* digits = "0123456789abcdef";
    std::string id(8, '0');
    for (std::size_t place = id.size(); place-- > 0; number /= 16)
        id[place] = digits[number % 16];
    return id;
}

double now() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::string reasonOf(int code) {
    switch (code & 0xff) {
        case SQLITE_FULL:
            return "the disk is full";
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return "another program has locked it";
        case SQLITE_READONLY:
            return "it cannot be written";
        case SQLITE_CONSTRAINT:
            return "the work is no longer there";
        default:
            return sqlite3_errstr(code);
    }
}

ui::WorkSummary summaryOf(const Statement& row, bool isHeld) {
    return {idOf(row.number(0)),
            row.text(1),
            row.text(2),
            ui::utcTime(row.real(3)),
            static_cast<std::size_t>(row.number(4)),
            isHeld};
}

}  // namespace

std::string SqliteWorkStore::usualPath() {
    return store::usualPath();
}

SqliteWorkStore::SqliteWorkStore(std::string path)
    : _path(std::move(path)), _locks(std::make_unique<WorkLocks>(_path + "-held")) {}

SqliteWorkStore::~SqliteWorkStore() {
    disconnect();
}

// ---- a work

std::string SqliteWorkStore::begin(const ui::WorkStart& start) {
    if (!problem().empty() || !connect(true)) return {};
    std::random_device random;
    std::int64_t work = 0;
    int code = SQLITE_CONSTRAINT;
    // A number that is taken is as good as never drawn again.
    for (int tries = 0; tries < 3 && (code & 0xff) == SQLITE_CONSTRAINT; ++tries) {
        work = random() & 0xffffffffU;
        code = _locks->take(work) ? insert(work, start) : SQLITE_BUSY;
        if (code != SQLITE_OK) _locks->release(work);
    }
    if (code != SQLITE_OK) {
        fail(code);
        return {};
    }
    _steps[work] = 0;
    return idOf(work);
}

int SqliteWorkStore::insert(std::int64_t work, const ui::WorkStart& start) {
    Statement statement = _database->prepare(
        "INSERT INTO works(id, picture, sha256, began, setUp, bytes) VALUES(?, ?, ?, ?, ?, ?)");
    const int code = statement.bind(1, work)
                         .bind(2, start.picture)
                         .bind(3, start.sha256)
                         .bind(4, now())
                         .bind(5, start.setUp)
                         .bind(6, start.bytes)
                         .step();
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

void SqliteWorkStore::record(const std::string& id, const std::string& step) {
    const auto work = numberOf(id);
    if (!work || !_locks->isMine(*work) || !problem().empty() || !_record) return;
    std::int64_t& number = _steps[*work];
    const int code = _record->bind(1, *work).bind(2, number).bind(3, step).step();
    if (code != SQLITE_DONE) return fail(code);
    ++number;
}

void SqliteWorkStore::end(const std::string& id) {
    const auto work = numberOf(id);
    if (!work || !_locks->isMine(*work)) return;
    remove(*work);
    _steps.erase(*work);
    _locks->release(*work);
}

// ---- works of before

void SqliteWorkStore::list(const Listed& listed) {
    std::vector<ui::WorkSummary> works;
    if (connect(false)) {
        Statement row = _database->prepare(summaries);
        int code = row.step();
        for (; code == SQLITE_ROW; code = row.step())
            works.push_back(summaryOf(row, _locks->isTaken(row.number(0))));
        if (code != SQLITE_DONE) fail(code);
    }
    listed(std::move(works));
}

void SqliteWorkStore::open(const std::string& id, const Opened& opened) {
    const auto work = numberOf(id);
    if (!work || !problem().empty() || !connect(false) || !_locks->takeSoon(*work)) {
        return opened(std::nullopt);
    }
    int code = SQLITE_DONE;
    ui::Work found = read(*work, code);
    if (code == SQLITE_OK) {
        _steps[*work] = static_cast<std::int64_t>(found.steps.size());
        return opened(std::move(found));
    }
    _locks->release(*work);
    if (code != SQLITE_DONE) fail(code);
    opened(std::nullopt);
}

// The code is SQLITE_OK for one that is there, SQLITE_DONE where there is none.
ui::Work SqliteWorkStore::read(std::int64_t work, int& code) {
    ui::Work found;
    Statement row = _database->prepare(
        "SELECT id, picture, sha256, began, 0, setUp, bytes FROM works WHERE id=?");
    code = row.bind(1, work).step();
    if (code != SQLITE_ROW) return found;
    found.summary = summaryOf(row, true);
    found.setUp = row.text(5);
    found.bytes = row.bytes(6);
    Statement step = _database->prepare("SELECT text FROM steps WHERE work=? ORDER BY number");
    step.bind(1, work);
    for (code = step.step(); code == SQLITE_ROW; code = step.step())
        found.steps.push_back(step.text(0));
    found.summary.steps = found.steps.size();
    if (code == SQLITE_DONE) code = SQLITE_OK;
    return found;
}

void SqliteWorkStore::forget(const std::string& id) {
    const auto work = numberOf(id);
    // Held for the moment, so that no editor goes on with it meanwhile.
    if (!work || !connect(false) || !_locks->takeSoon(*work)) return;
    remove(*work);
    _locks->release(*work);
}

int SqliteWorkStore::forgetSetAside() {
    const std::vector<std::string> files = filesSetAside(_path);
    return static_cast<int>(
        std::ranges::count_if(files, [](const std::string& file) { return removeFile(file); }));
}

// ---- removing

void SqliteWorkStore::remove(std::int64_t work) {
    if (!connect(false)) return;
    int code = erase(work);
    if ((code & 0xff) == SQLITE_FULL) {
        // The log takes room that it can give back.
        _database->run("PRAGMA wal_checkpoint(TRUNCATE)");
        code = erase(work);
    }
    // What was deleted is overwritten; what is left of it in free pages and in the log goes now.
    // Another editor that writes just then may keep the pages from going, and has them go later.
    if (code == SQLITE_OK) code = _database->run("VACUUM");
    if ((code & 0xff) == SQLITE_FULL || (code & 0xff) == SQLITE_BUSY) code = SQLITE_OK;
    if (code == SQLITE_OK) code = _database->run("PRAGMA wal_checkpoint(TRUNCATE)");
    if (code != SQLITE_OK) fail(code);
}

int SqliteWorkStore::erase(std::int64_t work) {
    const int code = _database->prepare("DELETE FROM works WHERE id=?").bind(1, work).step();
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

// ---- the database

// Whether there is one to work with. Without `makes` it is no problem that there is none.
bool SqliteWorkStore::connect(bool makes) {
    if (_database) return true;
    if (_path.empty()) {
        if (makes) report("there is no home folder to keep unfinished works in");
        return false;
    }
    if (makes) {
        if (const int number = makePrivately(_path)) {
            complain(std::strerror(number));
            return false;
        }
    } else if (!isThere(_path)) {
        return false;
    }
    closeToOthers(_path);
    _identity = identityOf(_path);
    int code = SQLITE_OK;
    _database = Database::open(_path, code);
    if (_database) code = prepareDatabase();
    if (code != SQLITE_OK) fail(code);
    if (code != SQLITE_OK) disconnect();
    return _database != nullptr;
}

int SqliteWorkStore::prepareDatabase() {
    std::int64_t version = 0;
    std::int64_t application = 0;
    std::int64_t tableCount = 0;
    int code = _database->ask("PRAGMA user_version", version);
    if (code == SQLITE_OK) code = _database->ask("PRAGMA application_id", application);
    if (code == SQLITE_OK) {
        code = _database->ask("SELECT count(*) FROM sqlite_schema", tableCount);
    }
    if (code != SQLITE_OK) return code;
    if (tableCount > 0 && application != applicationId) return isForeign;
    if (version > knownVersion) return isNewer;
    code = _database->run(settings);
    if (code == SQLITE_OK && tableCount == 0) code = makeTables();
    if (code != SQLITE_OK) return code;
    _record = _database->keep("INSERT INTO steps(work, number, text) VALUES(?, ?, ?)");
    return SQLITE_OK;
}

int SqliteWorkStore::makeTables() {
    int code = _database->run("BEGIN IMMEDIATE");
    if (code != SQLITE_OK) return code;
    // Another editor may have made them meanwhile.
    std::int64_t tableCount = 0;
    code = _database->ask("SELECT count(*) FROM sqlite_schema", tableCount);
    if (code == SQLITE_OK && tableCount == 0) code = _database->run(tables);
    if (code == SQLITE_OK) code = _database->run("COMMIT");
    if (code != SQLITE_OK) _database->run("ROLLBACK");
    return code;
}

void SqliteWorkStore::disconnect() {
    _record = nullptr;
    _database = nullptr;
}

// ---- problems

void SqliteWorkStore::fail(int code) {
    if (code == isNewer) return complain("a newer version has written it");
    if (code == isForeign) return complain("it holds something else");
    if ((code & 0xff) != SQLITE_CORRUPT && (code & 0xff) != SQLITE_NOTADB) {
        return complain(reasonOf(code));
    }
    // A statement may still be in use, whose end closes the connection.
    disconnect();
    // Somebody else may have set it aside and begun another.
    const bool isSame = identityOf(_path) == _identity;
    const std::string aside = isSame && !_locks->areOthersThere() ? setAside(_path) : "";
    complain(aside.empty() ? "it is damaged" : "it was damaged and is now " + aside);
}

void SqliteWorkStore::complain(const std::string& reason) {
    report(_path + ": " + reason);
}

}  // namespace kalim::store
