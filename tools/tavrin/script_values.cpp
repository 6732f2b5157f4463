#include "script_values.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <typeindex>

std::string ScriptWords::Next(const char* what)
{
    if (next >= positional.size()) throw ScriptError(std::string("missing argument: ") + what);
    return positional[next++];
}

double ParseNumber(const std::string& word)
{
    const char* s = word.c_str();
    char* end = nullptr;
    double v;
    if (word.size() > 2 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X'))
        v = static_cast<double>(std::strtoull(s, &end, 16));
    else
        v = std::strtod(s, &end);
    if (word.empty() || *end != '\0') throw ScriptError("not a number: '" + word + "'");
    return v;
}

ImageHeaderType* ItemFromWord(const std::string& word)
{
    if (word == "current") return dl_GetCurrentImagePtr();
    if (word == "null") return nullptr;
    double id = ParseNumber(word);
    ImageHeaderType* head = dl_GetCurrentImagePtr();
    while (head && head->Prev) head = head->Prev;
    for (ImageHeaderType* p = head; p; p = p->Next)
        if (p->DataId == static_cast<uint32_t>(id)) return p;
    throw ScriptError("no item with id " + word);
}

namespace {

std::map<std::type_index, std::vector<unsigned char>>& Records()
{
    static std::map<std::type_index, std::vector<unsigned char>> records;
    return records;
}

template <typename T>
void Store(unsigned char* p, double v)
{
    T t = static_cast<T>(v);
    std::memcpy(p, &t, sizeof t);
}

template <typename T>
std::string Show(const unsigned char* p)
{
    T t;
    std::memcpy(&t, p, sizeof t);
    return ResultText(t);
}

} // namespace

void* ScriptRecord(const std::type_info& type, size_t size)
{
    auto& bytes = Records()[std::type_index(type)];
    if (bytes.size() != size) bytes.assign(size, 0);
    return bytes.data();
}

void ResetScriptRecords() { Records().clear(); }

void ApplyFields(void* record, size_t size, const RecordFields* fields, const ScriptWords& words)
{
    auto* bytes = static_cast<unsigned char*>(record);
    for (const auto& [name, value] : words.fields) {
        const RecordField* f = nullptr;
        for (size_t i = 0; fields && i < fields->count; ++i)
            if (name == fields->fields[i].name) f = &fields->fields[i];
        if (!f) throw ScriptError("no field '" + name + "' in this record");
        if (f->offset + f->size > size) throw ScriptError("field '" + name + "' outside the record");
        unsigned char* p = bytes + f->offset;
        switch (f->kind) {
        case RecordField::I8: Store<int8_t>(p, ParseNumber(value)); break;
        case RecordField::U8: Store<uint8_t>(p, ParseNumber(value)); break;
        case RecordField::I16: Store<int16_t>(p, ParseNumber(value)); break;
        case RecordField::U16: Store<uint16_t>(p, ParseNumber(value)); break;
        case RecordField::I32: Store<int32_t>(p, ParseNumber(value)); break;
        case RecordField::U32: Store<uint32_t>(p, ParseNumber(value)); break;
        case RecordField::F32: Store<float>(p, ParseNumber(value)); break;
        case RecordField::F64: Store<double>(p, ParseNumber(value)); break;
        case RecordField::Text:
            std::memset(p, 0, f->size);
            std::memcpy(p, value.data(), std::min(value.size(), f->size - 1));
            break;
        }
    }
}

std::string RecordText(const void* record, size_t size, const RecordFields* fields)
{
    const auto* bytes = static_cast<const unsigned char*>(record);
    std::string out;
    if (!fields) {
        static const char digits[] = "0123456789abcdef";
        for (size_t i = 0; i < size; ++i) {
            out += digits[bytes[i] >> 4];
            out += digits[bytes[i] & 15];
        }
        return out;
    }
    for (size_t i = 0; i < fields->count; ++i) {
        const RecordField& f = fields->fields[i];
        const unsigned char* p = bytes + f.offset;
        std::string v;
        switch (f.kind) {
        case RecordField::I8: v = Show<int8_t>(p); break;
        case RecordField::U8: v = Show<uint8_t>(p); break;
        case RecordField::I16: v = Show<int16_t>(p); break;
        case RecordField::U16: v = Show<uint16_t>(p); break;
        case RecordField::I32: v = Show<int32_t>(p); break;
        case RecordField::U32: v = Show<uint32_t>(p); break;
        case RecordField::F32: v = Show<float>(p); break;
        case RecordField::F64: v = Show<double>(p); break;
        case RecordField::Text:
            v.assign(1, '"');
            v.append(reinterpret_cast<const char*>(p), strnlen(reinterpret_cast<const char*>(p), f.size));
            v.push_back('"');
            break;
        }
        if (i) out.push_back(' ');
        out.append(f.name).append("=").append(v);
    }
    return out;
}
