/* Tavrin Processing: everything a ProcessingHost needs. */
#ifndef TAVRIN_TAVRIN_H
#define TAVRIN_TAVRIN_H

#include "tavrin/types.h"
#include "tavrin/image_header.h"
#include "tavrin/ap_callbacks.h"
#include "tavrin/platform.h"
#include "tavrin/canvas.h"
#include "tavrin/dl_host.h"
#include "tavrin/dl_units.h"
#include "tavrin/dl_calibration.h"
#include "tavrin/dl_colour.h"
#include "tavrin/dl_data_list.h"
#include "tavrin/dl_settings.h"
#include "tavrin/dl_files.h"
#include "tavrin/dl_frame_store.h"
#include "tavrin/dl_display.h"
#include "tavrin/dl_filters.h"
#include "tavrin/dl_geometry.h"
#include "tavrin/dl_background.h"
#include "tavrin/dl_selection.h"
#include "tavrin/dl_plot.h"
#include "tavrin/dl_spectro.h"
#include "tavrin/dl_multispec.h"
#include "tavrin/dl_contrast.h"
#include "tavrin/dl_image_math.h"
#include "tavrin/dl_fft.h"
#include "tavrin/dl_particles.h"
#include "tavrin/dl_mapping.h"
#include "tavrin/dl_measure.h"
#include "tavrin/dl_mesh.h"

#endif
