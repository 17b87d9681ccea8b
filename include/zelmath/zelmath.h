// Every public class of zelmath.
#pragma once

#include <zellib/zellib.h>

#include <zelmath/complex_shape.h>
#include <zelmath/records.h>
