// Entry points: the mesh tool, extract and replace, lattice average.
#include "tavrin/dl_mesh.h"
#include "analysis/mesh.h"
#include "host/trace.h"
#include "image/lattice.h"
#include "image/regions.h"

TAVRIN_API CMesh* dl_GetMeshClass(MeshHandleType handle)
{
    TraceEntry("DLL_GetMeshClass");
    return GetMeshClass(handle);
}

TAVRIN_API void dl_ApMeshInfo(MeshInfoType* info, int16_t vfs)
{
    TraceEntry("DLL_ApMeshInfo");
    ApMeshInfo(info, vfs);
}

TAVRIN_API void dl_ExtractArea(void)
{
    TraceEntry("DLL_ExtractArea");
    StartExtractArea();
}

TAVRIN_API void dl_ReplaceArea(void)
{
    TraceEntry("DLL_ReplaceArea");
    ReplaceArea();
}

TAVRIN_API void dl_LatticeAverage(void)
{
    TraceEntry("DLL_LatticeAverage");
    StartLatticeAverage();
}
