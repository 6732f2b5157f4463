#include "files/exchange_forms.h"
#include "host/errors.h"
#include "store/image_header.h"

int OpenRawFile(int code, const char*, int, int)
{
    ProgramError("OpenSTMData %d", code);
    return 1;
}

int OpenAsciiFile(int code, const char*, int, int)
{
    ProgramError("OpenSTMData %d", code);
    return 1;
}

int SaveRawFile(int type, const char*)
{
    ProgramError("SaveSTMData Image %d", type);
    return 1;
}

int SaveAsciiFile(int type, const char*)
{
    ProgramError("SaveSTMData Image %d", type);
    return 1;
}

int SaveHeaderFile(int type, const ImageHeaderType* record, const char*)
{
    if (CheckHeaderIsImageType(record)) {
        ProgramError("SaveSTMData Image %d", type);
    } else {
        ProgramError("SaveSTMData Spec %d", type);
    }
    return 1;
}
