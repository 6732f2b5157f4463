#include "host/reset.h"
#include "files/tiff_read.h"
#include "files/file_state.h"
#include "analysis/multispec.h"
#include "analysis/elastic_modulus.h"
#include "display/colour_startup.h"
#include "display/render.h"
#include "display/scroll_bars.h"
#include "display/select_items.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "image/fft_commands.h"
#include "image/filter_kernels.h"
#include "image/contrast.h"
#include "image/geometry.h"
#include "image/particles.h"
#include "analysis/measure.h"
#include "image/subt_back.h"
#include "mapping/cits_display.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "host/progress.h"
#include "host/prompts.h"
#include "host/wait.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "analysis/mesh.h"
#include "image/lattice.h"
#include "image/regions.h"
#include "platform/locale.h"
#include "platform/platform_table.h"
#include "platform/safe_replace.h"
#include "platform/settings_store.h"
#include "settings/cantilever.h"
#include "spectro/spectro.h"
#include "spectro/spectrum_tools.h"
#include "store/data_list.h"
#include "store/memory.h"

void ResetProcessState()
{
    ResetGeometryState();
    ResetRegionState();
    ResetLatticeState();
    ResetMeshState();
    ResetContrastState();
    ResetSubtBackState();
    ResetFFTState();
    ResetParticleState();
    ResetMeasureState();
    ResetFilterKernels();
    ResetCITSDisplayState();
    ResetSelectionState();
    ResetScrollBars();
    ResetSelectItems();
    ResetDataListState();
    ResetFrameStoreState();
    ResetMemoryState();
    ResetLogState();
    ResetErrorState();
    ResetCallbackTable();
    ResetPlatformState();
    ResetGlobals();
    ReplayFlag = false;
    ResetWaitState();
    ResetProgressState();
    SetClockForTests(nullptr);
    SetLocaleNameForTests(nullptr);
    SetFileWriteLimitForTests(-1);
    SetFileReadFailureForTests(false);
    SetFileWriteFailureAtCallForTests(-1);
    SetFileReplaceFaultForTests(ReplaceFault::None);
    SetFileReplaceSync(true);
    ResetProfileChanges();
    ResetTiffFileState();
    ResetFileCommandState();
    ResetCantileverState();
    ResetColourState();
    ResetImageDisplayState();
    ResetSpectroState();
    ResetSpecToolsState();
    ResetMultiSpecState();
    ResetElasticModulus();
}
