// The mesh tool: one object that the host's dialog drives (tavrin/dl_mesh.h), the host's
// reports of the mesh, and the command run when the dialog is finished.
#pragma once

#include "tavrin/dl_mesh.h"

// The one mesh object.
extern CMesh Mesh;
// The host's last report, as corrected.
extern MeshInfoType MeshInfo;

CMesh* GetMeshClass(MeshHandleType handle);
void ApMeshInfo(MeshInfoType* info, int vfs);

// The four rows of the information box for a report.
void MeshInfoRows(const MeshInfoType& info, char rows[4][64]);

void ResetMeshState();
