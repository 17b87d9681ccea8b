// Every public class of zelmath.
#pragma once

#include <zellib/zellib.h>

#include <zelmath/records.h>
#include <zelmath/complex_shape.h>
#include <zelmath/line.h>
#include <zelmath/circle.h>
#include <zelmath/triangle.h>
#include <zelmath/clothoid.h>
#include <zelmath/cubic_parabola.h>
#include <zelmath/half_sine.h>
#include <zelmath/long_prof_curve.h>
#include <zelmath/plane.h>
#include <zelmath/station_map.h>
