#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace kalim::store {

// A statement that is prepared once and run as often as wanted. Columns and parameters are counted
// as SQLite does: columns from 0, parameters from 1.
class Statement {
public:
    Statement(sqlite3* database, std::string_view sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // What is bound is not copied and must live until the statement has run.
    Statement& bind(int parameter, std::int64_t number);
    Statement& bind(int parameter, double real);
    Statement& bind(int parameter, std::string_view text);
    Statement& bind(int parameter, std::span<const std::uint8_t> bytes);
    // The next row: SQLITE_ROW, SQLITE_DONE after the last, else what went wrong. After anything
    // but a row it can be run anew.
    int step();

    // ---- the row
    std::int64_t number(int column) const;
    double real(int column) const;
    std::string text(int column) const;
    std::vector<std::uint8_t> bytes(int column) const;

private:
    sqlite3_stmt* _statement = nullptr;
    // Why it could not be prepared or bound.
    int _problem = 0;
};

// A connection to a database file that exists. Answers are SQLite's result codes.
class Database {
public:
    // Waits so long for others that write, seconds, before it gives up.
    static constexpr double patience = 2;

    // Null where it cannot be opened, and `code` says why.
    static std::unique_ptr<Database> open(const std::string& path, int& code);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    int run(const char* statements);
    Statement prepare(std::string_view sql) { return Statement(_database, sql); }
    std::unique_ptr<Statement> keep(std::string_view sql) {
        return std::make_unique<Statement>(_database, sql);
    }
    // The first number that a question answers with.
    int ask(const char* question, std::int64_t& answer);

private:
    Database() = default;

    sqlite3* _database = nullptr;
};

}  // namespace kalim::store
