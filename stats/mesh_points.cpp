#include "stats/kernels/mesh_points.h"

#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(MeshPoints, kMeshPoints, mesh_points)

}  // namespace ovik
