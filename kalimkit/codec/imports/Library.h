#pragma once

#include <string>

namespace kalim::codec {

// A library of the system that is loaded when it is wanted, and stays until the process ends. What
// it is called by includes its version: one with other structures has another name.
class Library {
public:
    explicit Library(const char* fileName);

    // Takes the address of a function by its name.
    template <typename Function>
    Library& find(const char* name, Function*& function) {
        function = reinterpret_cast<Function*>(address(name));
        return *this;
    }
    // Whether it is there, and every function that was looked for.
    bool isWhole() const { return _handle != nullptr && !_lacksFunction; }

    // What a user can do about one that is not: "to read TIFF files install libtiff6".
    static std::string advice(const char* format, const std::string& fileName);

private:
    void* address(const char* name);

    void* _handle;
    bool _lacksFunction = false;
};

}  // namespace kalim::codec
