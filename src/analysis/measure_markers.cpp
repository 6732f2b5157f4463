// The marker array of the measuring object, grown and emptied on behalf of hosts that do not
// manage it themselves.
#include "analysis/measure.h"

#include <cstring>

#include "host/error_numbers.h"
#include "host/errors.h"
#include "store/memory.h"

int AddMeasureMarker(CMeasure* measure, int32_t type, const POINTs* points, int32_t count, POINTs seed)
{
    if (!measure || count < 0 || (count > 0 && !points)) return -1;
    POINTs* copy = nullptr;
    if (count > 0) {
        copy = static_cast<POINTs*>(emalloc(static_cast<size_t>(count) * sizeof(POINTs)));
        if (!copy) {
            Error(ERR_NO_MEMORY);
            return -1;
        }
        std::memcpy(copy, points, static_cast<size_t>(count) * sizeof(POINTs));
    }
    auto* grown = static_cast<MeasureMarkerType*>(
        erealloc(measure->Markers, static_cast<size_t>(measure->NoOfMarkers + 1) * sizeof(MeasureMarkerType)));
    if (!grown) {
        efree(copy);
        Error(ERR_NO_MEMORY);
        return -1;
    }
    measure->Markers = grown;
    MeasureMarkerType& m = grown[measure->NoOfMarkers];
    measure->InitMeasureMarkerType(&m);
    m.Type = type;
    m.Points = copy;
    m.NoOfPoints = count;
    m.Seed = seed;
    return measure->NoOfMarkers++;
}

void ClearMeasureMarkers(CMeasure* measure)
{
    if (!measure) return;
    for (int i = 0; i < measure->NoOfMarkers && measure->Markers; ++i) FreeMarker(&measure->Markers[i]);
    efree(measure->Markers);
    measure->Markers = nullptr;
    measure->NoOfMarkers = 0;
    measure->CurrentMarker = -1;
}
