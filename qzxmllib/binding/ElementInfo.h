#pragma once

// All entries of an element table: the base and the named classes by the kind of value they hold.
#include "qzxmllib/binding/ElementInfoBase.h"
#include "qzxmllib/binding/ElementInfoCls.h"
#include "qzxmllib/binding/ElementInfoCol.h"
#include "qzxmllib/binding/ElementInfoPrim.h"
#include "qzxmllib/binding/ElementInfoUntpd.h"
