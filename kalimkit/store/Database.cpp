#include "kalimkit/store/Database.h"

#include <sqlite3.h>

namespace kalim::store {

// ---- statements

Statement::Statement(sqlite3* database, std::string_view sql)
    : _problem(sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size()),
                                  SQLITE_PREPARE_PERSISTENT, &_statement, nullptr)) {}

Statement::~Statement() {
    sqlite3_finalize(_statement);
}

Statement& Statement::bind(int parameter, std::int64_t number) {
    if (_problem == SQLITE_OK) _problem = sqlite3_bind_int64(_statement, parameter, number);
    return *this;
}

Statement& Statement::bind(int parameter, double real) {
    if (_problem == SQLITE_OK) _problem = sqlite3_bind_double(_statement, parameter, real);
    return *this;
}

Statement& Statement::bind(int parameter, std::string_view text) {
    if (_problem != SQLITE_OK) return *this;
    _problem = sqlite3_bind_text64(_statement, parameter, text.data(), text.size(), SQLITE_STATIC,
                                   SQLITE_UTF8);
    return *this;
}

Statement& Statement::bind(int parameter, std::span<const std::uint8_t> bytes) {
    if (_problem != SQLITE_OK) return *this;
    // A null pointer would be a null value.
    const void* const data = bytes.empty() ? static_cast<const void*>("") : bytes.data();
    _problem = sqlite3_bind_blob64(_statement, parameter, data, bytes.size(), SQLITE_STATIC);
    return *this;
}

int Statement::step() {
    if (_problem != SQLITE_OK) return _problem;
    const int code = sqlite3_step(_statement);
    if (code != SQLITE_ROW) sqlite3_reset(_statement);
    return code;
}

std::int64_t Statement::number(int column) const {
    return sqlite3_column_int64(_statement, column);
}

double Statement::real(int column) const {
    return sqlite3_column_double(_statement, column);
}

std::string Statement::text(int column) const {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(_statement, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(_statement, column));
    return text ? std::string(text, size) : std::string();
}

std::vector<std::uint8_t> Statement::bytes(int column) const {
    const auto* const data =
        static_cast<const std::uint8_t*>(sqlite3_column_blob(_statement, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(_statement, column));
    return data ? std::vector<std::uint8_t>(data, data + size) : std::vector<std::uint8_t>();
}

// ---- connection

std::unique_ptr<Database> Database::open(const std::string& path, int& code) {
    // Before there is a connection, which nobody would close if there were no memory for it.
    std::unique_ptr<Database> database(new Database);
    sqlite3*& opened = database->_database;
    code = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                           nullptr);
    if (code != SQLITE_OK) return nullptr;
    sqlite3_busy_timeout(opened, static_cast<int>(patience * 1000));
    // A file may have been tampered with.
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    return database;
}

Database::~Database() {
    sqlite3_close_v2(_database);
}

int Database::run(const char* statements) {
    return sqlite3_exec(_database, statements, nullptr, nullptr, nullptr);
}

int Database::ask(const char* question, std::int64_t& answer) {
    Statement statement = prepare(question);
    const int code = statement.step();
    if (code == SQLITE_ROW) answer = statement.number(0);
    return code == SQLITE_ROW || code == SQLITE_DONE ? SQLITE_OK : code;
}

}  // namespace kalim::store
