#include "files/particle_statistics.h"
#include "files/spectrum_files.h"
#include "host/errors.h"
#include "host/log.h"
#include "image/particles.h"
#include "platform/files.h"
#include "store/memory.h"
#include "store/units.h"

#include <cstdio>
#include <cstring>

namespace {

bool WriteLine(FileHandle file, const char* line)
{
    const size_t length = std::strlen(line);
    return FileWrite(file, line, length) == static_cast<long long>(length);
}

bool WriteRows(FileHandle file, const ParticleStats& stats)
{
    const SpecExportParam settings = GetSpecExportParam();
    const char c = ExportSeparatorCharacter(settings.separator);
    const char* square = AreaUnits();
    char line[512];
    if (!settings.noHeading) {
        std::snprintf(line, sizeof line, "Number%cX1%cY1%cX2%cY2%cArea/nm%s%cArea/pix%cPerimeter/nm%cArea/Perimeter%s\r\n",
                      c, c, c, c, c, square, c, c, c, square);
        if (!WriteLine(file, line)) return false;
    }
    for (int i = 0; i < stats.ObjectCount; ++i) {
        const ParticleObject& o = stats.Objects[i];
        std::snprintf(line, sizeof line, "%d%c%d%c%d%c%d%c%d%c%E%c%d%c%E%c%E\r\n", i + 1, c, o.X1, c, o.Y1, c, o.X2, c,
                      o.Y2, c, o.Area, c, static_cast<int>(o.Pixels), c, o.Perimeter, c, ParticleShape(o));
        if (!WriteLine(file, line)) return false;
    }
    return true;
}

} // namespace

int32_t WriteObjectStatistics(const char* path)
{
    ImageHeaderType* item = ParticleBilevelItem();
    if (!item) {
        Error(ERR_NO_IMAGES);
        return 0;
    }
    if (!IsBilevel(item, true)) return 0;
    if (!path || !*path) {
        ProgramError("WriteObjectStatistics");
        return 0;
    }
    ParticleStats stats;
    if (!MeasureAllObjects(item->PixData, item->nx, item->ny, ParticleFrame(item), &stats)) return 0;
    if (stats.ObjectCount == 0) {
        Log("Write statistics for %u particles to disk.\n", 0u);
        return 1;
    }
    const FileHandle file = FileCreate(path);
    if (file == kInvalidFile) {
        FreeParticleStats(&stats);
        Error(ERR_OPEN_FILE);
        return 0;
    }
    bool ok = WriteRows(file, stats);
    if (FileClose(file) != 0) ok = false;
    const unsigned count = static_cast<unsigned>(stats.ObjectCount);
    FreeParticleStats(&stats);
    if (!ok) {
        FileRemove(path);
        Error(ERR_WRITING);
        return 0;
    }
    Log("Write statistics for %u particles to disk.\n", count);
    return 1;
}
