#ifndef VKSVG_VKSVG_H
#define VKSVG_VKSVG_H

// Everything a host needs: the public API of libvkSvg and the platform
// types that it uses.

/// @namespace vk
/// The platform layer (devices, log, string helpers) and the contour cleanup
/// and triangulation that segmentation fills shapes with.

/// @namespace vk::svg
/// libvkSvg: the item tree, loading and saving, path data, segmentation and
/// tessellation.

/// @namespace vk::svg::SegmentationUtils
/// The curve and arc subdividers that the shape segmenters are built from.

/// @namespace vkSvg
/// Queries about the library build itself.

#include <svg/Export.h>

#include <svg/BoundingBox.h>
#include <svg/BoundingBoxEstimation.h>
#include <svg/Color.h>
#include <svg/DocumentIO.h>
#include <svg/Items.h>
#include <svg/Library.h>
#include <svg/Options.h>
#include <svg/PathBuilder.h>
#include <svg/PathCommand.h>
#include <svg/PathData.h>
#include <svg/PathPrimitives.h>
#include <svg/RenderingProperties.h>
#include <svg/Segmentation.h>
#include <svg/Tessellation.h>
#include <svg/TextSpace.h>
#include <svg/Triangulation.h>
#include <svg/UnitValue.h>
#include <svg/Version.h>
#include <svg/Writer.h>
#include <svg/vkCoreDriver.h>
#include <svg/vkSvgDriver.h>
#include <svg/vkSvgIOManager.h>

#include <vkSystem/vkCancelInterface.h>
#include <vkSystem/vkIoDevice.h>
#include <vkSystem/vkIoDeviceFileStream.h>
#include <vkSystem/vkIoDeviceMemory.h>
#include <vkSystem/vkLog.h>
#include <vkSystem/vkProgressNotifierInterface.h>
#include <vkSystem/vkSoftwareVersion.h>

#include <wm4/Wm4.h>

#endif
