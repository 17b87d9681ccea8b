// Every value type of zellib.
#pragma once

#include <zellib/constants.h>
#include <zellib/coordinate.h>
#include <zellib/value.h>
