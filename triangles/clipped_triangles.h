// The triangle actions are declared by family, for every mode and form.
#pragma once

#include "triangles/colorized_triangles.h"
#include "triangles/flat_triangles.h"
