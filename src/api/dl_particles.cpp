// Entry points: particle analysis.
#include "tavrin/dl_particles.h"
#include "files/particle_statistics.h"
#include "host/errors.h"
#include "host/trace.h"
#include "image/particles.h"

TAVRIN_API int16_t dl_GetParticleParam(wint_ParticleParamType* param)
{
    TraceEntry("dl_GetParticleParam");
    return GetParticleParam(param);
}

TAVRIN_API void dl_SetParticleParam(const wint_ParticleParamType* param)
{
    TraceEntry("dl_SetParticleParam");
    SetParticleParam(param);
}

TAVRIN_API void dl_GetParticleSttsParam(wint_ParticleSttsParamType* param, int16_t init, int16_t fin)
{
    TraceEntry("dl_GetParticleSttsParam: %d %d", init, fin);
    GetParticleSttsParam(param, init, fin);
}

TAVRIN_API void dl_SetParticleSttsParam(const wint_ParticleSttsParamType* param)
{
    TraceEntry("dl_SetParticleSttsParam");
    SetParticleSttsParam(param);
}

TAVRIN_API int32_t dl_ParticleSttsGetDesc(int16_t row, char texts[5][TV_PARTICLE_DESC_TEXT])
{
    TraceEntry("dl_ParticleSttsGetDesc: %d", row);
    return ParticleSttsGetDesc(row, texts);
}

TAVRIN_API void dl_pb_ParticleSttsChoose(void)
{
    TraceEntry("dl_pb_ParticleSttsChoose");
    ChooseParticle();
}

TAVRIN_API void dl_pb_DisplayParticleHist(void)
{
    TraceEntry("dl_pb_DisplayParticleHist");
    DisplayParticleHistogram();
}

TAVRIN_API int32_t dl_ParticlePointer_Callback(int32_t handle, int32_t x, int32_t y, int32_t status)
{
    TraceEntry("dl_ParticlePointer_Callback: %d %d %d %d", handle, x, y, status);
    return ParticlePointerCallback(handle, x, y, status);
}

TAVRIN_API void dl_ToggleConnectivity(void)
{
    TraceEntry("dl_ToggleConnectivity");
    ToggleConnectivity();
}

TAVRIN_API int16_t dl_GetConnectivity(void)
{
    TraceEntry("dl_GetConnectivity");
    return static_cast<int16_t>(ParticleConnectivity());
}

TAVRIN_API void dl_ErodeBilevelImage(void)
{
    TraceEntry("dl_ErodeBilevelImage");
    ErodeBilevelImage();
}

TAVRIN_API void dl_DilateBilevelImage(void)
{
    TraceEntry("dl_DilateBilevelImage");
    DilateBilevelImage();
}

TAVRIN_API int32_t dl_IsolateBilevelImage(void)
{
    TraceEntry("dl_IsolateBilevelImage");
    return IsolateBilevelImage();
}

TAVRIN_API void dl_ShootObjects(void)
{
    TraceEntry("dl_ShootObjects");
    ShootObjects();
}

TAVRIN_API int32_t dl_WriteObjectStatistics(const char* path)
{
    TraceEntry("dl_WriteObjectStatistics");
    return WriteObjectStatistics(path);
}

TAVRIN_API void dl_GenerateBilevelImage(void)
{
    TraceEntry("dl_GenerateBilevelImage");
    ProgramError("Should not execute dl_GenerateBilevelImage()");
}

TAVRIN_API void dl_GetObjectStatistics(void)
{
    TraceEntry("dl_GetObjectStatistics");
}

TAVRIN_API void dl_CompileObjectStatistics(void)
{
    TraceEntry("dl_CompileObjectStatistics");
}

TAVRIN_API void dl_StatisticsHistogram(void)
{
    TraceEntry("dl_StatisticsHistogram");
}
