// The named fields of the stored image record, in file order: the name, the place and the
// kind of each. Readers of a record by name (the host's header listing, scripts) use this one
// table; the reserved ranges are not listed.
#pragma once

#include <cstddef>

enum class FieldKind {
    I8, U8, I16, U16, I32, U32, U64, F32, F64,
    Text,        // fixed text field, NUL-terminated within its size
    TextArray,   // `count` texts of size / count bytes each
    U8Array,     // byte table
    F32Array,
    DosDate,     // day, month, year, dayofweek
    DosTime,     // hour, minute, second, hsecond
    BlockFlag,   // a stored block word: 0, or non-zero when the block exists
};

struct HeaderField {
    const char* name;
    size_t offset;
    size_t size;
    FieldKind kind;
    int count;
};

extern const HeaderField kHeaderFields[];
extern const size_t kHeaderFieldCount;

// The field of that name, or null.
const HeaderField* FindHeaderField(const char* name);
