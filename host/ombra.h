// The whole host boundary in one include.
#pragma once

#include "host/frame_buffer_mask.h"
#include "host/ob_functions.h"
#include "host/ot_base.h"
#include "host/ot_geometry.h"
#include "host/ot_image.h"
#include "host/ot_module.h"
#include "host/ot_options.h"
#include "host/ot_palette.h"
#include "host/ot_renderer_data.h"
#include "host/ot_rendition.h"
