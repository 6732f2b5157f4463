// Entry points: number texts, float comparison and the square unit suffix.
#include "tavrin/dl_units.h"
#include "host/trace.h"
#include "store/units.h"
#include "store/value_text.h"

#include <string>

namespace {

// The answers of dl_Int2Str and dl_Double2Str, kept until the next call of the same function.
std::string g_intText;
std::string g_doubleText;

} // namespace

TAVRIN_API const char* dl_AreaUnits(void)
{
    TraceEntry("dl_AreaUnits");
    return AreaUnits();
}

TAVRIN_API BOOL32 dl_AreDoublesEqual(double a, double b)
{
    TraceEntry("dl_AreDoublesEqual");
    return AreDoublesEqual(a, b) ? 1 : 0;
}

TAVRIN_API BOOL32 dl_AreFloatsEqual(float a, float b)
{
    TraceEntry("dl_AreFloatsEqual");
    return AreFloatsEqual(a, b) ? 1 : 0;
}

TAVRIN_API const char* dl_Int2Str(int32_t value)
{
    TraceEntry("dl_Int2Str");
    g_intText = Int2Str(value);
    return g_intText.c_str();
}

TAVRIN_API const char* dl_Double2Str(double value)
{
    TraceEntry("dl_Double2Str");
    g_doubleText = Double2Str(value);
    return g_doubleText.c_str();
}

TAVRIN_API int32_t dl_Str2Int(const char* text)
{
    TraceEntry("dl_Str2Int");
    return Str2Int(text);
}

TAVRIN_API double dl_Str2Double(const char* text)
{
    TraceEntry("dl_Str2Double");
    return Str2Double(text);
}
