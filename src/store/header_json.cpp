#include "store/header_json.h"
#include "store/header_fields.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

template <typename T>
T Read(const unsigned char* p)
{
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <typename T>
std::string Shortest(T value)
{
    if (std::isnan(value)) return "\"nan\"";
    if (std::isinf(value)) return value < 0 ? "\"-inf\"" : "\"inf\"";
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::string DateJson(const unsigned char* p)
{
    DosDateType d = Read<DosDateType>(p);
    char b[128];
    std::snprintf(b, sizeof b, "{\"day\": %u, \"month\": %u, \"year\": %u, \"dayofweek\": %u}", d.day, d.month,
                  d.year, d.dayofweek);
    return b;
}

std::string TimeJson(const unsigned char* p)
{
    DosTimeType t = Read<DosTimeType>(p);
    char b[128];
    std::snprintf(b, sizeof b, "{\"hour\": %u, \"minute\": %u, \"second\": %u, \"hsecond\": %u}", t.hour, t.minute,
                  t.second, t.hsecond);
    return b;
}

std::string FieldJson(const HeaderField& f, const unsigned char* p)
{
    switch (f.kind) {
    case FieldKind::I8: return std::to_string(Read<int8_t>(p));
    case FieldKind::U8: return std::to_string(Read<uint8_t>(p));
    case FieldKind::I16: return std::to_string(Read<int16_t>(p));
    case FieldKind::U16: return std::to_string(Read<uint16_t>(p));
    case FieldKind::I32: return std::to_string(Read<int32_t>(p));
    case FieldKind::U32: return std::to_string(Read<uint32_t>(p));
    case FieldKind::U64: return std::to_string(Read<uint64_t>(p));
    case FieldKind::F32: return JsonFloat(Read<float>(p));
    case FieldKind::F64: return JsonDouble(Read<double>(p));
    case FieldKind::BlockFlag: return Read<uint32_t>(p) ? "1" : "0";
    case FieldKind::Text: return JsonString(reinterpret_cast<const char*>(p), f.size);
    case FieldKind::DosDate: return DateJson(p);
    case FieldKind::DosTime: return TimeJson(p);
    case FieldKind::TextArray: {
        std::string out = "[";
        size_t each = f.size / static_cast<size_t>(f.count);
        for (int i = 0; i < f.count; ++i) {
            if (i) out += ", ";
            out += JsonString(reinterpret_cast<const char*>(p + i * each), each);
        }
        return out + "]";
    }
    case FieldKind::U8Array: {
        std::string out = "[";
        for (size_t i = 0; i < f.size; ++i) {
            if (i) out += ", ";
            out += std::to_string(p[i]);
        }
        return out + "]";
    }
    case FieldKind::F32Array: {
        std::string out = "[";
        for (int i = 0; i < f.count; ++i) {
            if (i) out += ", ";
            out += JsonFloat(Read<float>(p + 4 * i));
        }
        return out + "]";
    }
    }
    return "null";
}

} // namespace

std::string JsonFloat(float value) { return Shortest(value); }
std::string JsonDouble(double value) { return Shortest(value); }

std::string JsonString(const char* text, size_t maxBytes)
{
    std::string out = "\"";
    for (size_t i = 0; i < maxBytes && text[i]; ++i) {
        auto c = static_cast<unsigned char>(text[i]);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char b[8];
            std::snprintf(b, sizeof b, "\\u%04x", c);
            out += b;
        } else if (c < 0x80) {
            out += static_cast<char>(c);
        } else {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out + "\"";
}

std::string HeaderToJson(const ImageHeaderType* record)
{
    if (!record) return "null";
    const auto* bytes = reinterpret_cast<const unsigned char*>(record);
    std::string out = "{";
    for (size_t i = 0; i < kHeaderFieldCount; ++i) {
        const HeaderField& f = kHeaderFields[i];
        if (i) out += ", ";
        out += "\"";
        out += f.name;
        out += "\": ";
        out += FieldJson(f, bytes + f.offset);
    }
    return out + "}";
}
