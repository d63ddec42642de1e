#include "stats/kernels/mesh_transform.h"

#include "util/kernel_dispatch.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(MeshTransforms, kMeshTransforms, mesh_transforms)

}  // namespace ovik
