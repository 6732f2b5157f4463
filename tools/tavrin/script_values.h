// Turning script words into the arguments of an entry point, and results into text.
//
// A word is a number, a quoted text ("like \"this\""), a bare word, or name=value for a field of
// a record argument. Record arguments of the same type share one copy per run of the script:
// a Get... entry fills it, the fields given on a Set... line change it, and Set... takes it.
#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "tavrin/tavrin.h"

// A script line that cannot be run: the message names what is wrong.
struct ScriptError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct ScriptWords {
    std::vector<std::string> positional;             // in order
    std::vector<std::pair<std::string, std::string>> fields;   // name=value
    size_t next = 0;
    std::string Next(const char* what);
    bool More() const { return next < positional.size(); }
};

// One field of a record a script can set and read.
struct RecordField {
    const char* name;
    size_t offset;
    size_t size;
    enum Kind { I8, U8, I16, U16, I32, U32, F32, F64, Text } kind;
};

struct RecordFields {
    const char* name;
    const RecordField* fields;
    size_t count;
};

// The field table of a record type, or null for a record the script treats as bytes
// (record_fields.h gives the tables of the records that have one).
template <typename T>
const RecordFields* FieldsOf()
{
    return nullptr;
}

// The script's copy of each record type.
void* ScriptRecord(const std::type_info& type, size_t size);
void ApplyFields(void* record, size_t size, const RecordFields* fields, const ScriptWords& words);
std::string RecordText(const void* record, size_t size, const RecordFields* fields);
void ResetScriptRecords();

double ParseNumber(const std::string& word);

template <typename R>
std::string ResultText(R value)
{
    if constexpr (std::is_same_v<R, ImageHeaderType*>) {
        return value ? "item " + std::to_string(value->DataId) : std::string("null");
    } else if constexpr (std::is_pointer_v<R>) {
        if constexpr (std::is_same_v<std::remove_cv_t<std::remove_pointer_t<R>>, char>) {
            if (!value) return "null";
            // Appended piece by piece: GCC 12 warns falsely (-Wrestrict) about "x" + string.
            std::string text(1, '"');
            text.append(value).push_back('"');
            return text;
        } else {
            return value ? std::string("set") : std::string("null");
        }
    } else if constexpr (std::is_floating_point_v<R>) {
        char b[64];
        std::snprintf(b, sizeof b, "%.9g", static_cast<double>(value));
        return b;
    } else {
        return std::to_string(static_cast<long long>(value));
    }
}

template <typename T, typename Enable = void>
struct Arg;

template <typename T>
struct Arg<T, std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>>> {
    T value;
    explicit Arg(ScriptWords& w) : value(static_cast<T>(ParseNumber(w.Next("a number")))) {}
    T Get() { return value; }
    void After(std::vector<std::string>&) {}
};

template <>
struct Arg<const char*> {
    std::string text;
    explicit Arg(ScriptWords& w) : text(w.Next("a text")) {}
    const char* Get() { return text.c_str(); }
    void After(std::vector<std::string>&) {}
};

// A text buffer the entry point fills (and may read first): 4096 bytes, shown after the call.
template <>
struct Arg<char*> {
    std::vector<char> buffer = std::vector<char>(4096, '\0');
    explicit Arg(ScriptWords& w)
    {
        if (w.More() && w.positional[w.next] != "-") {
            std::string init = w.Next("a text");
            std::strncpy(buffer.data(), init.c_str(), buffer.size() - 1);
        } else if (w.More()) {
            ++w.next;
        }
    }
    char* Get() { return buffer.data(); }
    void After(std::vector<std::string>& out) { out.push_back(buffer.data()); }
};

// An array of texts of N characters the entry point fills: room for 16, shown after the call,
// the texts up to the first empty one, separated by '|'.
template <size_t N>
struct Arg<char (*)[N]> {
    std::vector<char> buffer = std::vector<char>(16 * N, '\0');
    explicit Arg(ScriptWords&) {}
    char (*Get())[N] { return reinterpret_cast<char(*)[N]>(buffer.data()); }
    void After(std::vector<std::string>& out)
    {
        std::string text;
        for (size_t i = 0; i < 16 && buffer[i * N]; ++i) {
            if (i) text += '|';
            text.append(&buffer[i * N], strnlen(&buffer[i * N], N));
        }
        out.push_back(text);
    }
};

// A number the entry point reads and may change: shown after the call.
template <typename T>
struct Arg<T*, std::enable_if_t<std::is_arithmetic_v<T>>> {
    T value;
    explicit Arg(ScriptWords& w) : value(static_cast<T>(ParseNumber(w.Next("a number")))) {}
    T* Get() { return &value; }
    void After(std::vector<std::string>& out) { out.push_back(ResultText(value)); }
};

// Drawing contexts: the script draws into the frame store's own window.
template <>
struct Arg<DrawContext*> {
    explicit Arg(ScriptWords&) {}
    DrawContext* Get() { return nullptr; }
    void After(std::vector<std::string>&) {}
};

// The current item, "null", or a DataId.
ImageHeaderType* ItemFromWord(const std::string& word);

template <>
struct Arg<ImageHeaderType*> {
    ImageHeaderType* item;
    explicit Arg(ScriptWords& w) : item(w.More() ? ItemFromWord(w.Next("an item")) : dl_GetCurrentImagePtr()) {}
    ImageHeaderType* Get() { return item; }
    void After(std::vector<std::string>&) {}
};

template <>
struct Arg<const ImageHeaderType*> : Arg<ImageHeaderType*> {
    using Arg<ImageHeaderType*>::Arg;
};

// Records: the script's copy of the type, changed by the line's field words.
template <typename T>
struct Arg<T*, std::enable_if_t<std::is_class_v<T> && !std::is_same_v<std::remove_cv_t<T>, ImageHeaderType> &&
                                !std::is_same_v<std::remove_cv_t<T>, DrawContext>>> {
    using R = std::remove_cv_t<T>;
    R* record;
    explicit Arg(ScriptWords& w) : record(static_cast<R*>(ScriptRecord(typeid(R), sizeof(R))))
    {
        ApplyFields(record, sizeof(R), FieldsOf<R>(), w);
    }
    T* Get() { return record; }
    void After(std::vector<std::string>& out) { out.push_back(RecordText(record, sizeof(R), FieldsOf<R>())); }
};

