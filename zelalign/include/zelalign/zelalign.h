// The alignment layer: whole alignments of railway and tunnel tracks on top of
// the element geometry of zelmath. One include for every public class.
#pragma once

#include <zelalign/alignment.h>
#include <zelalign/alignment_set.h>
#include <zelalign/batch.h>
#include <zelalign/cant.h>
#include <zelalign/diagrams.h>
#include <zelalign/error.h>
#include <zelalign/horizontal.h>
#include <zelalign/message.h>
#include <zelalign/polyline.h>
#include <zelalign/profile.h>
#include <zelalign/readers/landxml.h>
#include <zelalign/readers/points_csv.h>
#include <zelalign/set_out.h>
#include <zelalign/station_equations.h>
#include <zelalign/stationed_point.h>
#include <zelalign/tunnel_metre.h>
#include <zelalign/validation.h>
#include <zelalign/version.h>
