// Made from idl/orlix.idl by idl/make_header.py: not to be edited.

// Orlix: measuring grey-level microscope images of small polished surfaces.
//
// This file is the contract: the C++ header and the type library are made from it. Rules that hold for every method and
// are not repeated below:
//
//  (1) Results. S_OK; S_FALSE where a comment says that nothing was done; E_FAIL after a failure. The text of a failure
//      is the description in the thread's error information (IErrorInfo), its source the ProgID of the object's class.
//      Texts are quoted below as they are reported. Failures of the system itself (no memory) give E_FAIL without a
//      text. For an image without pixels, each method of IImageFile, IImageEntries, IImageProcessBase, IImageProcess
//      and IOrlixImageProcess that needs pixels reports "IImageProcess::Invert: no image.", under its own name and
//      interface; IImageVPA, IImageVPAExPlus and IDisplayProcess give E_FAIL without a text.
//  (2) Null. A null output pointer, and null for an interface that a method needs, give E_POINTER; nothing is written
//      and there is no text. A null string is an empty string, except that a null description means none.
//  (3) Checks run in the order in which they are listed and before anything is written, so a failed call leaves its
//      object unchanged unless stated otherwise.
//  (4) Coordinates. x is the column, y the row, both from 0; pixel centres lie at whole numbers; angles are in degrees.
//  (5) Objects are apartment-threaded. Pointers into an object (rows, runs, bins) stay valid until the object is
//      created again, changed or released, as each method says.
//  (6) Conversion of a double to an integer pixel, unless stated otherwise: values below the type's minimum give the
//      minimum, values above its maximum the maximum, all others floor(v + 0.5); NaN gives the minimum. A float pixel
//      takes the nearest float; values beyond its range give the largest finite float of that sign, and NaN stays NaN.
//
// Interfaces may still grow in place until version 1.0; from then on they are immutable.
//
// A comment belongs to the declarations below it, up to the next comment or empty line; its first sentence is their
// help string in the type library.

#ifndef ORLIX_ORLIX_H
#define ORLIX_ORLIX_H

#ifndef __cplusplus
#error "this header is for C++; the interface compilers make one for C from orlix.idl"
#endif

#ifdef _WIN32
#include <windows.h>
#include <ole2.h>
#include <oaidl.h>
#include <ocidl.h>
#else
#include <orlix/platform/component_abi.h>
#endif

// Interfaces have no destructors: Release ends what is behind them.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

struct IPersistStreamInitEx;
struct IImageVPA;
struct IImageVPAEx;
struct IImageVPAExPlus;
struct IImageFile;
struct IImageEntries;
struct IImageFrames;
struct IVBHelper;
struct IHistogram;
struct IBitmap;
struct IBitmapProcess;
struct IRegionOfInterest;
struct IShapeRegionOfInterest;
struct IPictureEx;
struct IPictureMemory;
struct IPictureExZoom;
struct IPictureExZoomDisp;
struct IPictureExEvents;
struct IGraphicOverlay;
struct IImageProcessBase;
struct IImageProcess;
struct IOrlixImageProcess;
struct IPolygon;
struct IStructuringElement;
struct IBlobs;
struct IDisplayProcess;
struct IModuleInformation;
struct IDIBImage;
struct ILineGraphicOverlay;
struct ICircleGraphicOverlay;
struct ITextGraphicOverlay;
struct ISplineImage;
struct IHistogramDialog;
struct IHistogramDialogEvents;
struct IImageViewDisp;
struct IImageViewEventsDisp;
struct IRegionOfInterest;
struct IStructuringElement;
struct IBlobs;

// Saves an image to a stream and loads it again.
// The image also answers the system's IPersistStreamInit (and IPersist), from which this interface derives. A stream
// keeps the pixels, the coordinate map, the description, the pixel size, the luminance range, the band to process, the
// number of bins, the display settings and all entries (IImageEntries). It does not keep the region of interest and the
// table, which stay unless the pixel type changes. (Not in the type library, which would have to repeat the system's
// interfaces.)
//
// A stream is, in this order:
//     "qelo", double 1.0, pixel type code
//     "imba", double 1.3, coordinate map (OrgX OrgY A11 A12 A21 A22, doubles)
//     bands, width, height, bytes per sample, row stride, size of the pixels in bytes
//     N = max(width, height) + 400; N entries of the offset table (XEntry, YEntry) from its margin on, unused ones 0
//     L; L bytes: the pixels, band by band in padded rows, as one zlib stream
//     description
//     luminance range (lower, upper: one sample each), band to process, number of bins
//     display range (one sample each), band to display, 256 palette entries of 4 bytes, 4 bytes and three doubles that
//         are kept as they are
//     T; T text entries: double 1.0, keyword, text
//     Z; Z binary entries: double 1.0, keyword, S, S bytes
// Little-endian; integers have 4 bytes; a string is the number of its UTF-16 units, then the units. A description
// without units means none. If the pixel size in microns is known, it is the first binary entry: "MicronsPerPixel", 16
// bytes, X and Y as doubles. The next one is the number of significant bits, if that is known: "SignificantBits", an
// integer. (Such entries put by a client become the pixel size and that number on loading.)
//
// GetClassID     The class of OrlixImage.
// IsDirty        S_OK when something that a stream keeps has changed since the object was made, loaded, or saved with
//                fClearDirty; else S_FALSE. Writing pixels through the image's pointers goes unnoticed.
// InitNew        S_OK once; E_UNEXPECTED after InitNew or a successful load. Changes nothing else.
// Load           E_UNEXPECTED after InitNew or a successful load, before the stream is touched. Reads one image from
//                the stream and nothing beyond its last byte. A failed load leaves the object as it was, and it can
//                still be loaded. Nothing in a stream is trusted: sizes must agree with each other, the table must be
//                the one that the geometry gives, and memory grows with the bytes that have arrived. A failure of the
//                stream is passed on.
//                  "IPersistStreamInit::Load: not an image stream."
//                  "IPersistStreamInit::Load: version compatibility problems." (of the stream, its record or an entry)
//                  E_FAIL without a text: a pixel type that OrlixImage does not create, or no "imba"
//                  "IPersistStreamInit::Load: the stream ends early."
//                  "IPersistStreamInit::Load: the stream is damaged."
//                  and the texts of IImageFile::SampleLimit
// Save           All memory is allocated before the first byte is written. A failure of the stream is passed on; a
//                write that stores fewer bytes than asked gives 0x80030103. Without pixels:
//                "IPersistStreamInit::Save: no image."; with 2^32 bytes of pixels or more:
//                "IPersistStreamInit::Save: the image is too large for a stream."
// GetSizeMax     At least what Save writes: everything is counted exactly, except that the compressed pixels count as
//                ceil(1.001 size) + 12 bytes. "IPersistStreamInit::GetSizeMax: no image."
MIDL_INTERFACE("23f98071-2f31-4da6-8b3e-88179a47be27") IPersistStreamInitEx : public IPersistStreamInit {
    // Does what Load does, with the same texts, even if the object was loaded or initialised before.
    virtual HRESULT STDMETHODCALLTYPE ReLoad(IStream* Stm) = 0;
};
DEFINE_GUID(IID_IPersistStreamInitEx, 0x23f98071, 0x2f31, 0x4da6, 0x8b,0x3e, 0x88,0x17,0x9a,0x47,0xbe,0x27);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPersistStreamInitEx, 0x23f98071, 0x2f31, 0x4da6, 0x8b,0x3e, 0x88,0x17,0x9a,0x47,0xbe,0x27)
#endif

// The type library OrlixLib.
DEFINE_GUID(LIBID_OrlixLib, 0x9de17042, 0x4e68, 0x4807, 0xb2,0xee, 0x96,0x07,0xec,0x37,0x66,0x4c);

// Pixel type code: bits per sample, + 0x200 for a signed integer, + 0x400 for floating point. OrlixImage creates
// DT_BYTE, DT_WORD, DT_DWORD and DT_Float.
typedef enum DataType : LONG {
    DT_BYTE = 8,
    DT_UnsignedChar = 8,
    DT_WORD = 16,
    DT_UnsignedShort = 16,
    DT_DWORD = 32,
    DT_UnsignedLong = 32,
    DT_Char = 0x208,
    DT_Short = 0x210,
    DT_Long = 0x220,
    DT_Float = 0x420,
    DT_Double = 0x440
} DataType;

// Where a method takes a band index, BI_AllBands selects all bands.
typedef enum BandIndexType : LONG {
    BI_AllBands = -1
} BandIndexType;

// How drawing combines with the pixels already there. Any other value draws as DT_Xor.
typedef enum DrawType : LONG {
    DT_On = 0,
    DT_Off = 1,
    DT_Xor = 2
} DrawType;

// Which side of a shape a region selects. Any other value counts as PT_Inside.
typedef enum PolarityType : LONG {
    PT_Inside = 0,
    PT_Outside = 1,
    PT_Frame = 2
} PolarityType;

// Kinds of device contexts that pictures are rendered on, with the system's numbers.
typedef enum RenderSourceType : LONG {
    RST_Display = 3,
    RST_Metafile = 4,
    RST_Memory = 10,
    RST_EnhancedMetafile = 12
} RenderSourceType;

// How a picture in memory is scaled when it is not shown pixel for pixel.
//   RS_Smooth   averages where the picture shrinks, interpolates linearly where it grows
//   RS_Nearest  shows the pixel under the centre
typedef enum RasterScaling : LONG {
    RS_Smooth = 0,
    RS_Nearest = 1
} RasterScaling;

// Which neighbours of a pixel are connected with it: 4 (left, right, above, below) or 8 (the diagonal ones as
// well).
typedef enum ConnectivityType : LONG {
    CT_4 = 4,
    CT_8 = 8
} ConnectivityType;

// Side of a boundary.
typedef enum BoundaryType : LONG {
    BT_Inner = 0,
    BT_Outer = 1
} BoundaryType;

// Bit flags: what get_GrayMeasurements (the first two) and IBlobs::MeasureGray measure. SBlobGrayMeasurements says
// what each stands for.
typedef enum GrayExtractMeasurementType : LONG {
    GEMT_GrayLocation = 1,
    GEMT_GrayStatistics = 2,
    GEMT_GrayRank = 4,
    GEMT_GrayBoundary = 8,
    GEMT_GrayVolume = 16
} GrayExtractMeasurementType;

// Bit flags: what IBlobs::GetBinaryMeasurements measures. SBinaryMeasurements says what each stands for.
typedef enum BinaryExtractMeasurementType : LONG {
    BEMT_Size = 1,
    BEMT_Topology = 2,
    BEMT_FilledArea = 4,
    BEMT_Perimeter = 8,
    BEMT_CroftonPerimeter = 16,
    BEMT_Hull = 32,
    BEMT_Feret = 64,
    BEMT_OrientedBox = 128,
    BEMT_Ellipse = 256,
    BEMT_Moments = 512,
    BEMT_BorderContact = 1024,
    BEMT_InscribedCircle = 2048,
    BEMT_EnclosingCircle = 4096,
    BEMT_Skeleton = 8192,
    BEMT_All = 16383
} BinaryExtractMeasurementType;

// A single measurement of a blob.
// It is the field of this name in SBinaryMeasurements or, from 100 on, in SBlobGrayMeasurements.
typedef enum SingleMeasurementType : LONG {
    SMT_Label = 0,
    SMT_PixelCount = 1,
    SMT_Area = 2,
    SMT_EquivalentRadius = 3,
    SMT_Left = 4,
    SMT_Top = 5,
    SMT_Right = 6,
    SMT_Bottom = 7,
    SMT_Extent = 8,
    SMT_XCentroid = 9,
    SMT_YCentroid = 10,
    SMT_Holes = 11,
    SMT_EulerNumber = 12,
    SMT_FilledArea = 13,
    SMT_Perimeter = 14,
    SMT_Circularity = 15,
    SMT_CroftonPerimeter = 16,
    SMT_HullArea = 17,
    SMT_HullPerimeter = 18,
    SMT_Solidity = 19,
    SMT_FeretMaximum = 20,
    SMT_FeretMaximumAngle = 21,
    SMT_FeretMinimum = 22,
    SMT_FeretMinimumAngle = 23,
    SMT_Roundness = 24,
    SMT_Compactness = 25,
    SMT_BoxLength = 26,
    SMT_BoxWidth = 27,
    SMT_BoxAngle = 28,
    SMT_MajorAxis = 29,
    SMT_MinorAxis = 30,
    SMT_EllipseAngle = 31,
    SMT_Eccentricity = 32,
    SMT_AspectRatio = 33,
    SMT_ImageBorderPixels = 34,
    SMT_RegionBorderPixels = 35,
    SMT_InscribedRadius = 36,
    SMT_EnclosingRadius = 37,
    SMT_SkeletonLength = 38,
    SMT_MeanWidth = 39,
    SMT_GrayXCentroid = 100,
    SMT_GrayYCentroid = 101,
    SMT_GrayMinimum = 102,
    SMT_GrayMaximum = 103,
    SMT_GrayAverage = 104,
    SMT_GrayStandardDeviation = 105,
    SMT_GraySkewness = 106,
    SMT_GrayKurtosis = 107,
    SMT_GrayIntegrated = 108,
    SMT_GrayMedian = 109,
    SMT_GrayMode = 110,
    SMT_GrayBoundaryAverage = 111,
    SMT_VolumeOverZero = 112,
    SMT_VolumeOverMinimum = 113,
    SMT_VolumeOverPlane = 114
} SingleMeasurementType;

// Outlines of a blob: around the squares of its pixels, or through the centres of its boundary pixels.
typedef enum OutlineType : LONG {
    OT_PixelEdges = 0,
    OT_PixelCenters = 1
} OutlineType;

// Shapes of the distribution that IImageProcess::EqualizeTable aims at.
typedef enum EqualizationType : LONG {
    ET_Uniform = 1,
    ET_UpperTriangular = 2
} EqualizationType;

// Image file formats.
typedef enum ImageFileFormat : LONG {
    IFF_ByExtension = 0,
    IFF_PNG = 1,
    IFF_PGM = 2,
    IFF_PlainPGM = 3,
    IFF_PPM = 4,
    IFF_PlainPPM = 5,
    IFF_BMP = 6,
    IFF_TIFF = 7,
    IFF_JPEG = 8,
    IFF_PFM = 9,
    IFF_PAM = 10
} ImageFileFormat;

// Pixel formats of camera frames, by the names and codes of the GenICam standard (PFNC).
// The number is that of the bits in a sample. A frame gives 8-bit images for 8 bits, 16-bit images of the same
// numbers for more (10 bits: 0..1023). Layouts, with the bytes b0, b1, ... of a group:
//   8               a byte for each sample
//   10 12 14 16     a sample is b0 + 256 b1; bits above those of the format are dropped
//   10p             4 samples in 5 bytes, sample k is bits 10 k to 10 k + 9, counted from the lowest bit of b0
//   12p             2 samples in 3 bytes, likewise
//   10Packed        2 samples in 3 bytes: 4 b0 + (b1 & 3) and 4 b2 + (b1 >> 4 & 3)
//   12Packed        2 samples in 3 bytes: 16 b0 + (b1 & 15) and 16 b2 + (b1 >> 4)
//   RGB8, BGR8      3 bytes for each pixel; RGB8_Planar: a plane for each colour; they give red, green, blue
// Bayer formats name the colour filters of the first two samples in the first row: below RG lies GB, below GR BG.
typedef enum FramePixelFormat : LONG {
    PF_Mono8 = 0x1080001,
    PF_Mono10 = 0x1100003,
    PF_Mono10p = 0x10a0046,
    PF_Mono10Packed = 0x10c0004,
    PF_Mono12 = 0x1100005,
    PF_Mono12p = 0x10c0047,
    PF_Mono12Packed = 0x10c0006,
    PF_Mono14 = 0x1100025,
    PF_Mono16 = 0x1100007,
    PF_BayerRG8 = 0x1080009,
    PF_BayerRG10 = 0x110000d,
    PF_BayerRG10p = 0x10a0058,
    PF_BayerRG10Packed = 0x10c0027,
    PF_BayerRG12 = 0x1100011,
    PF_BayerRG12p = 0x10c0059,
    PF_BayerRG12Packed = 0x10c002b,
    PF_BayerRG16 = 0x110002f,
    PF_BayerGB8 = 0x108000a,
    PF_BayerGB10 = 0x110000e,
    PF_BayerGB10p = 0x10a0054,
    PF_BayerGB10Packed = 0x10c0028,
    PF_BayerGB12 = 0x1100012,
    PF_BayerGB12p = 0x10c0055,
    PF_BayerGB12Packed = 0x10c002c,
    PF_BayerGB16 = 0x1100030,
    PF_BayerGR8 = 0x1080008,
    PF_BayerGR10 = 0x110000c,
    PF_BayerGR10p = 0x10a0056,
    PF_BayerGR10Packed = 0x10c0026,
    PF_BayerGR12 = 0x1100010,
    PF_BayerGR12p = 0x10c0057,
    PF_BayerGR12Packed = 0x10c002a,
    PF_BayerGR16 = 0x110002e,
    PF_BayerBG8 = 0x108000b,
    PF_BayerBG10 = 0x110000f,
    PF_BayerBG10p = 0x10a0052,
    PF_BayerBG10Packed = 0x10c0029,
    PF_BayerBG12 = 0x1100013,
    PF_BayerBG12p = 0x10c0053,
    PF_BayerBG12Packed = 0x10c002d,
    PF_BayerBG16 = 0x1100031,
    PF_RGB8 = 0x2180014,
    PF_BGR8 = 0x2180015,
    PF_RGB8_Planar = 0x2180021
} FramePixelFormat;

// What a script does with a file that it opens as a stream.
//   FSM_Read     reads a file that exists
//   FSM_Create   writes and reads a new file, or an old one after emptying it
//   FSM_Update   writes and reads a file that exists
typedef enum FileStreamMode : LONG {
    FSM_Read = 0,
    FSM_Create = 1,
    FSM_Update = 2
} FileStreamMode;

// An automatic threshold of IHistogram, with the parameters that the command line gives it.
//   TM_MinimizeVariance   AutoThresholdMinimizeVariance, 0 and 0
//   TM_Trim               AutoThresholdTrim, 0.05 and 0.05
//   TM_SearchForMinimum   AutoThresholdSearchForMinimum, 0.005 and 0.005
//   TM_GaussianMixture    AutoThresholdGaussianMixture, 0.005 and 0.005
//   TM_MaximizeEntropy    AutoThresholdMaximizeEntropy, 0.005 and 0.005
//   TM_Exponential        AutoThresholdExponential, 0.05
typedef enum AutoThresholdType : LONG {
    TM_MinimizeVariance = 0,
    TM_Trim = 1,
    TM_SearchForMinimum = 2,
    TM_GaussianMixture = 3,
    TM_MaximizeEntropy = 4,
    TM_Exponential = 5
} AutoThresholdType;

// What becomes of a frame with colour filters: the samples as they are, grey, or three bands.
typedef enum FrameMosaic : LONG {
    FM_Keep = 0,
    FM_Grey = 1,
    FM_Bands = 2
} FrameMosaic;

// Offsets of column i (XEntry) and of row i (YEntry), in samples of the image's type. Sample (x, y) of a band is
// the element [table[x].XEntry + table[y].YEntry] counted from the band's base. See IImageVPA::VPA.
typedef struct VPAEntry {
    LONG XEntry;
    LONG YEntry;
} VPAEntry;

// A 2 x 2 matrix: the linear part of a TCoordinateMap.
typedef struct TMatrix {
    double A11;
    double A12;
    double A21;
    double A22;
} TMatrix;

// Affine relation between pixel coordinates and a frame outside the image (a parent image, a calibrated frame).
typedef struct TCoordinateMap {
    double OrgX;
    double OrgY;
    TMatrix Matrix;
} TCoordinateMap;

// A run covers the columns m_lStart..m_lStop, both included. The other fields belong to labelling; regions leave
// them 0.
typedef struct SRun {
    LONG m_lStart;
    LONG m_lStop;
    LONG m_lLabel;
    struct SRun* m_pRightBridge;
    struct SRun* m_pLeftOverpass;
    struct SRun* m_pLeftParent;
    struct SRun* m_pRightChild;
} SRun;

// The results of get_GrayMeasurements.
// m_lSize belongs to the caller and is not written. The centroid is in pixel coordinates, weighted by the grey
// value.
typedef struct SGrayMeasurements {
    LONG m_lSize;
    LONG m_lPixelCount;
    double m_dGrayXCentroid;
    double m_dGrayYCentroid;
    double m_dGrayAverage;
    double m_dGrayStandardDeviation;
} SGrayMeasurements;

// A fitted plane.
// In all fitted surfaces x is the column, y the row and z the grey value; m_lSize belongs to the caller and is not
// written.
// Plane: z = m_dAlpha x + m_dBeta y + m_dGamma.
typedef struct SPlanarFit {
    LONG m_lSize;
    double m_dAverage;
    double m_dAlpha;
    double m_dBeta;
    double m_dGamma;
} SPlanarFit;

// A fitted polynomial of degree 2.
// z = K0 + K1 y + K2 x + K3 y^2 + K4 x y + K5 x^2.
typedef struct SBiquadraticFit {
    LONG m_lSize;
    double m_dAverage;
    double m_dK0;
    double m_dK1;
    double m_dK2;
    double m_dK3;
    double m_dK4;
    double m_dK5;
} SBiquadraticFit;

// A fitted polynomial of degree 3.
// z = the terms of SBiquadraticFit + K6 y^3 + K7 x y^2 + K8 x^2 y + K9 x^3.
typedef struct SBicubicFit {
    LONG m_lSize;
    double m_dAverage;
    double m_dK0;
    double m_dK1;
    double m_dK2;
    double m_dK3;
    double m_dK4;
    double m_dK5;
    double m_dK6;
    double m_dK7;
    double m_dK8;
    double m_dK9;
} SBicubicFit;

// A fitted hemisphere, see IOrlixImageProcess::get_HemisphereFit.
typedef struct SHemisphereFit {
    LONG m_lSize;
    double m_dAverage;
    double m_dXCenter;
    double m_dYCenter;
    double m_dZCenter;
    double m_dZScale;
    double m_dRadius;
} SHemisphereFit;

// A fitted hemisphere on a tilted base, see IOrlixImageProcess::get_AngledHemisphereFit.
typedef struct SAngledHemisphereFit {
    LONG m_lSize;
    double m_dAverage;
    double m_dXCenter;
    double m_dYCenter;
    double m_dZCenter;
    double m_dZScale;
    double m_dRadius;
    double m_dAlpha;
    double m_dBeta;
} SAngledHemisphereFit;

// The shape of a blob, see IBlobs::GetBinaryMeasurements.
// Two views of a blob occur. As an *area* it is the union of its pixels' squares, with corners half-way between
// pixel centres; as a *set of points* it is its pixels' centres. sx and sy are the sides of a pixel
// (PutMicronsPerPixel), N is the number of pixels. docs/accuracy.md has the bias and the scatter of each number.
//
// BEMT_Size, which every other group includes:
//   PixelCount        N
//   Area              N sx sy
//   EquivalentRadius  of the disc of this area: sqrt(Area / pi)
//   Left to Bottom    first and last columns and rows of the pixels
//   Extent            N / ((Right - Left + 1) (Bottom - Top + 1))
//   XCentroid, Y...   the mean of the pixel centres, in pixels
// BEMT_Topology:
//   Holes             components of the background in the other connectivity that lie in the blob
//   EulerNumber       1 - Holes
// BEMT_FilledArea:
//   FilledArea        the area with all holes and what lies in them
// BEMT_Perimeter:
//   Perimeter         of the outer border and the holes: for each of them, with the 8-connected chain through the
//                     blob's pixels along it, of e straight steps, d diagonal ones and c corners,
//                     (0.980 e + 1.406 d - 0.091 c) s (Vossepoel and Smeulders 1982), + 2 sqrt(2) s for the outer
//                     border and - 2 sqrt(2) s for a hole, because the chain runs (sqrt(2) / pi) s inside on
//                     average (Steiner 1840). s = sqrt(sx sy); NaN where sx and sy differ by more than 1 %.
//   Circularity       4 pi Area / Perimeter^2: 1 for a disc; CroftonPerimeter stands in for a NaN. Blobs of a few
//                     pixels may have more than 1.
// BEMT_CroftonPerimeter:
//   CroftonPerimeter  of all borders, from the crossings of lines in eight directions (Crofton 1868; Ohser and
//                     Muecklich 2000): pi times the sum of w_v d_v (N - C_v) over v = (1,0), (0,1), (1,1), (-1,1),
//                     (2,1), (-2,1), (1,2), (-1,2), where C_v counts the pixels p with p + v in the blob as well,
//                     d_v is the distance of the lines through pixel centres, and w_v the share of directions
//                     nearest v
// BEMT_Hull, of the convex hull of the area:
//   HullArea, HullPerimeter; Solidity = Area / HullArea, at most 1
// BEMT_Feret, of the same hull:
//   FeretMaximum      the largest distance of two corners, the direction from the first (X1, Y1) to the second
//   FeretMinimum      the least width, and the shortest way across there (rotating calipers: Shamos 1978)
//   Roundness         4 Area / (pi FeretMaximum^2);  Compactness = sqrt(Roundness) (ISO 9276-6)
// BEMT_OrientedBox:   the rectangle of least area around the area (Freeman and Shapira 1975; Toussaint 1983): its
//                     centre, length and width of its sides, direction of the longer ones
// BEMT_Ellipse, of the ellipse that has the second moments of the area (the pixels' own, sx^2 / 12 and sy^2 / 12,
// included):
//   MajorAxis, MinorAxis (full lengths), EllipseAngle (of the major axis; 0 for a circle), Eccentricity =
//   sqrt(1 - (MinorAxis / MajorAxis)^2), AspectRatio = MajorAxis / MinorAxis
// BEMT_Moments, of the set of points, each with the weight sx sy; for (p, q) in this order:
//   RawMoments        sum of (x sx)^p (y sy)^q about pixel (0, 0): 00 10 01 20 11 02 30 21 12 03
//   CentralMoments    the same about the centroid: 20 11 02 30 21 12 03
//   NormalizedMoments central / Area^(1 + (p + q) / 2)
//   HuMoments         the seven invariants of Hu (1962)
// BEMT_BorderContact, numbers of pixels of the blob:
//   ImageBorderPixels in the first or last row or column;  RegionBorderPixels next to (left, right, above or below)
//                     a pixel of the bitmap that the region leaves out
// BEMT_InscribedCircle: the largest circle in the area about a pixel centre, corner or middle of a side
// BEMT_EnclosingCircle: the smallest circle around the area (Welzl 1991; Gaertner 1999)
// BEMT_Skeleton, of the blob thinned by itself with eight neighbours (IBitmapProcess::Skeleton), whatever its
// connectivity; takes time with the pixels of the blobs' boxes, at most a few times those of the image:
//   SkeletonLength    of all branches, from tip to tip. Pixels of the skeleton are linked to their neighbours,
//                     diagonally only if none of it lies beside both; branches run between nodes, the pixels that
//                     do not have two links. A branch is the polyline of its pixels, each but the nodes moved to
//                     the mean (1 2 1) / 4 with those before and after it, four times over. Each end of a branch
//                     with one link adds the straight line to it from four pixels back (or from a node before
//                     that), from its centre on to the edge of the area. A ring has no end. For a skeleton of one
//                     pixel, the mean of the horizontal and the vertical chord through it.
//   MeanWidth         Area / SkeletonLength: of the rectangle of this area and length (a disc: pi / 4 of its
//                     diameter)
typedef struct SBinaryMeasurements {
    LONG m_lSize;
    LONG m_lLabel;
    LONG m_lPixelCount;
    double m_dArea;
    double m_dEquivalentRadius;
    LONG m_lLeft;
    LONG m_lTop;
    LONG m_lRight;
    LONG m_lBottom;
    double m_dExtent;
    double m_dXCentroid;
    double m_dYCentroid;
    LONG m_lHoles;
    LONG m_lEulerNumber;
    double m_dFilledArea;
    double m_dPerimeter;
    double m_dCircularity;
    double m_dCroftonPerimeter;
    double m_dHullArea;
    double m_dHullPerimeter;
    double m_dSolidity;
    double m_dFeretMaximum;
    double m_dFeretMaximumAngle;
    double m_dFeretMaximumX1;
    double m_dFeretMaximumY1;
    double m_dFeretMaximumX2;
    double m_dFeretMaximumY2;
    double m_dFeretMinimum;
    double m_dFeretMinimumAngle;
    double m_dFeretMinimumX1;
    double m_dFeretMinimumY1;
    double m_dFeretMinimumX2;
    double m_dFeretMinimumY2;
    double m_dRoundness;
    double m_dCompactness;
    double m_dBoxXCenter;
    double m_dBoxYCenter;
    double m_dBoxLength;
    double m_dBoxWidth;
    double m_dBoxAngle;
    double m_dMajorAxis;
    double m_dMinorAxis;
    double m_dEllipseAngle;
    double m_dEccentricity;
    double m_dAspectRatio;
    double m_dRawMoments[10];
    double m_dCentralMoments[7];
    double m_dNormalizedMoments[7];
    double m_dHuMoments[7];
    LONG m_lImageBorderPixels;
    LONG m_lRegionBorderPixels;
    double m_dInscribedXCenter;
    double m_dInscribedYCenter;
    double m_dInscribedRadius;
    double m_dEnclosingXCenter;
    double m_dEnclosingYCenter;
    double m_dEnclosingRadius;
    double m_dSkeletonLength;
    double m_dMeanWidth;
} SBinaryMeasurements;

// The grey values of a blob, see IBlobs::MeasureGray. N pixels with the grey values g.
// GEMT_GrayLocation:
//   XCentroid, Y...   sum of x g / sum of g, in pixels; NaN where the sum of g is 0
// GEMT_GrayStatistics:
//   Minimum, Maximum; Integrated = sum of g; Average = Integrated / N
//   StandardDeviation s = sqrt(sum of (g - Average)^2 / N)
//   Skewness          sum of (g - Average)^3 / (N s^3);  Kurtosis = sum of (g - Average)^4 / (N s^4), 3 for a
//                     normal distribution; both NaN where s is 0
// GEMT_GrayRank:
//   Median            the middle value, the mean of the two middle ones for an even N
//   Mode              the most frequent value, the smallest of equals
// GEMT_GrayBoundary:
//   BoundaryAverage   the mean over the pixels of the inner boundary: those with a neighbour left, right, above or
//                     below that is not in the blob (outside the image counts as not in it)
// GEMT_GrayVolume, each times the area of a pixel:
//   VolumeOverZero    sum of g;  VolumeOverMinimum = sum of (g - Minimum)
//   VolumeOverPlane   sum of (g - plane), with the plane fitted by least squares to the surroundings: the pixels
//                     within 2 rows and columns of the blob that are in no blob. NaN where they do not determine
//                     one.
// A NaN pixel makes all values of its blob but the counts NaN.
typedef struct SBlobGrayMeasurements {
    LONG m_lSize;
    LONG m_lLabel;
    double m_dGrayXCentroid;
    double m_dGrayYCentroid;
    double m_dGrayMinimum;
    double m_dGrayMaximum;
    double m_dGrayAverage;
    double m_dGrayStandardDeviation;
    double m_dGraySkewness;
    double m_dGrayKurtosis;
    double m_dGrayIntegrated;
    double m_dGrayMedian;
    double m_dGrayMode;
    double m_dGrayBoundaryAverage;
    double m_dVolumeOverZero;
    double m_dVolumeOverMinimum;
    double m_dVolumeOverPlane;
} SBlobGrayMeasurements;

// The outline of a blob at a grey level, finer than its pixels, see IBlobs::GetLevelMeasurements.
// All of the polygon that get_LevelOutline describes, except for the gains in area and perimeter.
//   Area              the polygon's, with what its chords and the averaging of each pixel over its square cost: pi
//                     S / (6 P) + 0.47 square pixels for the outer outline, less as much for each hole, where S is
//                     the sum of the cubes of an outline's chords and P that of the chords
//   Perimeter         of all outlines: the length along the means (1 2 1) / 4 of neighbouring vertices, which lie
//                     up to 0.05 pixels on either side of the contour, and 7 pi^2 S / (6 P^2) that these cost
//   EquivalentRadius  sqrt(Area / pi);  Circularity = 4 pi Area / Perimeter^2
//   XCentroid, Y...   of the area inside the polygon, in pixels
//   MajorAxis, MinorAxis, EllipseAngle: of the ellipse that has its second moments
//   FeretMaximum, FeretMinimum and their angles: of its convex hull
//   LevelShare        the share of vertices that the grey level determines. Near 0, the outline is that of the
//                     bitmap, and these figures are no better than those of the pixels.
typedef struct SLevelMeasurements {
    LONG m_lSize;
    LONG m_lLabel;
    double m_dArea;
    double m_dPerimeter;
    double m_dEquivalentRadius;
    double m_dCircularity;
    double m_dXCentroid;
    double m_dYCentroid;
    double m_dMajorAxis;
    double m_dMinorAxis;
    double m_dEllipseAngle;
    double m_dFeretMaximum;
    double m_dFeretMaximumAngle;
    double m_dFeretMinimum;
    double m_dFeretMinimumAngle;
    double m_dLevelShare;
} SLevelMeasurements;

// What IVBHelper::MeasureFile finds in an image file: the figures of the command line's measure.
// m_lSize belongs to the caller and is not written. Figures that do not apply are NaN.
//   Width, Height, Bands, DataType    of the file
//   MicronsPerPixelX, Y               0 when the pixel size is not known
//   PixelCount                        pixels of the band
//   GrayAverage to GrayYCentroid      of these; excess kurtosis is 0 for a normal distribution
//   Dip, LeastDipOfTwoPeaks           Hartigan's dip of the histogram, and from where on it shows a second peak
//   ThresholdFound                    1, or 0 where the method finds none: those below are NaN then, PhasePixels 0
//   Threshold                         the last dark level; of TM_Trim the first level above its dark tail
//   DarkFraction, BrightFraction      of the pixels, on either side
//   PhasePixels to PhaseYCentroid     of the side that was asked for; PhaseArea in square microns, NaN when the
//                                     pixel size is not known
typedef struct SFileMeasurements {
    LONG m_lSize;
    LONG m_lWidth;
    LONG m_lHeight;
    LONG m_lBands;
    LONG m_lDataType;
    LONG m_lPixelCount;
    LONG m_lThresholdFound;
    LONG m_lPhasePixels;
    double m_dMicronsPerPixelX;
    double m_dMicronsPerPixelY;
    double m_dGrayAverage;
    double m_dGrayStandardDeviation;
    double m_dGrayMinimum;
    double m_dGrayMaximum;
    double m_dGrayMedian;
    double m_dGrayMode;
    double m_dGraySkew;
    double m_dGrayExcessKurtosis;
    double m_dGrayEntropy;
    double m_dGrayXCentroid;
    double m_dGrayYCentroid;
    double m_dDip;
    double m_dLeastDipOfTwoPeaks;
    double m_dThreshold;
    double m_dDarkFraction;
    double m_dBrightFraction;
    double m_dPhaseFraction;
    double m_dPhaseArea;
    double m_dPhaseXCentroid;
    double m_dPhaseYCentroid;
} SFileMeasurements;

// A vertex of a polygon; x is the column, y the row.
typedef struct SVertice {
    double m_dX;
    double m_dY;
} SVertice;

// A pixel relative to a reference pixel, or a byte of a bitmap relative to the reference pixel's byte.
// See IStructuringElement.
typedef struct SElement {
    // to the right
    LONG m_lX;
    // downwards
    LONG m_lY;
    // 0; consumers may keep an address offset here
    LONG m_lOffset;
    // of a byte: the bits that count, 0x80 the leftmost; else 0
    unsigned char m_yValue;
} SElement;

// Any image that hands out pixels. Consumers use this interface only, so another component may lay out its samples
// as it likes (interleaved, flipped, sub-sampled): the offset table decides.
MIDL_INTERFACE("cd1b0330-b898-406c-879a-f9acddba5f55") IImageVPA : public IUnknown {
    // Number of bands, width and height. An empty image gives zeros.
    virtual HRESULT STDMETHODCALLTYPE Dimensions(LONG* Bands, LONG* Width, LONG* Height) = 0;

    // Type code (enum DataType) of the samples; all bands share it, so the band index is not checked.
    virtual HRESULT STDMETHODCALLTYPE DataType(LONG BandIndex, LONG* DataType) = 0;

    // Base address of a band, and a pointer to entry 0 of the offset table. The table reaches from 200 entries
    // before 0 to 200 beyond the larger of width and height; entries outside the image mirror it without repeating
    // the edge (column -1 reads column 1; an axis of length 1 reads 0 everywhere). Entries beyond length + 200 of
    // the shorter axis are undefined. Both outputs are first set to null; an image without pixels gives S_FALSE.
    // "IImageVPA::VPA: BandIndex is out of range" (also for BI_AllBands).
    // Both pointers stay valid until the image is created again or released.
    virtual HRESULT STDMETHODCALLTYPE VPA(LONG BandIndex, void** hBase, VPAEntry** hVPA) = 0;

    // The coordinate map; the identity in a new image.
    virtual HRESULT STDMETHODCALLTYPE GetCoords(TCoordinateMap* CoordinateMap) = 0;

    // Sets the coordinate map; nothing is checked.
    virtual HRESULT STDMETHODCALLTYPE SetCoords(TCoordinateMap CoordinateMap) = 0;
};
DEFINE_GUID(IID_IImageVPA, 0xcd1b0330, 0xb898, 0x406c, 0x87,0x9a, 0xf9,0xac,0xdd,0xba,0x5f,0x55);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageVPA, 0xcd1b0330, 0xb898, 0x406c, 0x87,0x9a, 0xf9,0xac,0xdd,0xba,0x5f,0x55)
#endif

// The default interface of OrlixImage; adds nothing to IImageVPA.
MIDL_INTERFACE("ca4cf0a4-2a5f-462e-89a4-f86a3f8a35d1") IImageVPAEx : public IImageVPA {
};
DEFINE_GUID(IID_IImageVPAEx, 0xca4cf0a4, 0x2a5f, 0x462e, 0x89,0xa4, 0xf8,0x6a,0x3f,0x8a,0x35,0xd1);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageVPAEx, 0xca4cf0a4, 0x2a5f, 0x462e, 0x89,0xa4, 0xf8,0x6a,0x3f,0x8a,0x35,0xd1)
#endif

// Creates images. Each creation replaces the content: pixels, coordinate map, description, text and binary entries,
// calibration and the band to process (0 for an image of one band, BI_AllBands for several). The client's settings
// (region, luminance range, number of bins, table) survive until the pixel type changes, which resets them.
// Failures of this interface return DISP_E_EXCEPTION where no other result is named.
MIDL_INTERFACE("f7aa9c93-839b-4c96-9cbd-bd0efc09c235") IImageVPAExPlus : public IImageVPAEx {
    // A copy of the description, null when none is set. Frees the string that *hVal holds on entry: pass null or a
    // string that you own.
    virtual HRESULT STDMETHODCALLTYPE get_Description(BSTR* hVal) = 0;

    // Sets the description to a copy of the string; null removes it.
    virtual HRESULT STDMETHODCALLTYPE put_Description(BSTR newVal) = 0;

    // Creates a new image. Rows are stored top-down, one band after the other, each row padded to a multiple of 4
    // bytes. Zero != 0 clears all samples; with Zero = 0 an image of the same geometry keeps its samples, and new
    // bytes are 0.
    //   a DataType that OrlixImage does not create: E_FAIL, no text, and the image is empty afterwards
    //   "IImageVPAEx::Create: Width must be positive."
    //   "IImageVPAEx::Create: Height must be positive."
    //   "IImageVPAEx::Create: Bands must be positive."
    //   "ImageVPAExPlus::Create: DataType must specify at least one byte per pixel" (E_FAIL)
    // More than 2^31 - 1 samples in a band, or an image that does not fit into memory, gives E_FAIL and leaves the
    // image as it was.
    virtual HRESULT STDMETHODCALLTYPE Create(LONG Width, LONG Height, LONG Bands, LONG DataType, LONG Zero) = 0;

    // Makes a deep copy of one band or of all bands, with the coordinate map and the calibration. S_FALSE when
    // Image is this image.
    virtual HRESULT STDMETHODCALLTYPE CreateFromImage(IImageVPA* Image, LONG BandIndex) = 0;

    // Makes a deep copy of a rectangle, both ends included. The coordinate map is the source's with OrgX = -Left
    // and OrgY = -Top. Parts outside the source read its mirrored margin; a rectangle that reaches more than 200
    // samples beyond the source fails. With this image as the source it is cropped in place.
    //   "IImageVPAEx::CreateFromSubImage: the rectangle is too far outside the image."
    virtual HRESULT STDMETHODCALLTYPE CreateFromSubImage(IImageVPA* Image, LONG BandIndex, LONG Left, LONG Top,
        LONG Right, LONG Bottom) = 0;

    // Loads the first page of an image file as IImageFile::LoadFromFile does.
    // Of BMP files it takes only uncompressed ones of 8 bits. A damaged or incomplete file fails, and a failed load
    // leaves the image as it was. Memory is allocated as pixels are decoded, never for more than
    // IImageFile::SampleLimit allows.
    //   "IImageVPAEx::CreateFromFile: failed to open file."
    //   "IImageVPAEx::CreateFromFile: unknown file format." and the texts of the readers, each under its own name
    virtual HRESULT STDMETHODCALLTYPE CreateFromFile(BSTR FileName) = 0;

    // Uses the client's memory as the pixels, in the layout of Create. The memory must outlive the image or its
    // next creation. Reports the texts of Create under its own name, then (E_FAIL)
    //   "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for reading."
    //   "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for writing."
    // after which the image refers to the refused buffer, and any call that would touch its pixels fails.
    virtual HRESULT STDMETHODCALLTYPE AttachBuffer(void* pBuffer, LONG Width, LONG Height, LONG Bands, LONG DataType,
        LONG Zero) = 0;
};
DEFINE_GUID(IID_IImageVPAExPlus, 0xf7aa9c93, 0x839b, 0x4c96, 0x9c,0xbd, 0xbd,0x0e,0xfc,0x09,0xc2,0x35);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageVPAExPlus, 0xf7aa9c93, 0x839b, 0x4c96, 0x9c,0xbd, 0xbd,0x0e,0xfc,0x09,0xc2,0x35)
#endif

// Loads and saves image files, and holds the pixel size and the limit of what may be loaded.
MIDL_INTERFACE("dade9363-84f7-4ecb-b68f-534b9d51e5dc") IImageFile : public IUnknown {
    // Saves the image. IFF_ByExtension chooses by the file name (.png .bmp .pgm .ppm .pam .pfm .tif .tiff .jpg
    // .jpeg, any case). PNG and PAM take 8- and 16-bit images of one band (grey) or three (colour); PGM one band,
    // PPM three, 8 or 16 bits; BMP and JPEG 8 bits, PFM floating point, with one band or three; TIFF every image.
    // The file is written next to its final place and then moved there, so a failure leaves an older file of that
    // name as it was. TIFF files are compressed without losses (deflate).
    // PNG keeps all that streams keep (IPersistStreamInit), and chunks of other programs that came with a loaded
    // PNG file and may be copied although the pixels have changed. Samples of fewer significant bits than their
    // type has (see SignificantBits) are scaled to the type's range, as other programs expect them, and scaled back
    // exactly when the file is loaded. TIFF and JPEG keep the same, but for the chunks, in a tag and in segments of
    // their own, and the pixel size also as the resolution that other programs read.
    //   "IImageFile::SaveToFile: no image."
    //   "IImageFile::SaveToFile: unknown file format."
    //   "IImageFile::SaveToFile: the format holds 8- and 16-bit images only."
    //   "IImageFile::SaveToFile: the format holds 8-bit images only."
    //   "IImageFile::SaveToFile: the format does not hold this type of pixels."
    //   "IImageFile::SaveToFile: the format does not hold this number of bands."
    //   "IImageFile::SaveToFile: failed to write file."
    virtual HRESULT STDMETHODCALLTYPE SaveToFile(BSTR FileName, ImageFileFormat Format) = 0;

    // Physical size of a pixel in microns. S_FALSE and zeros when it is not known.
    virtual HRESULT STDMETHODCALLTYPE GetMicronsPerPixel(double* X, double* Y) = 0;

    // Sets the physical size of a pixel in microns: finite values above 0, or 0, 0 for unknown.
    // PNG files keep it exactly; other programs read it from there in whole pixels per metre.
    // "IImageFile::PutMicronsPerPixel: the pixel size must be positive."
    virtual HRESULT STDMETHODCALLTYPE PutMicronsPerPixel(double X, double Y) = 0;

    // The largest image that this object loads, in samples: width times height times bands.
    // It applies to files (IImageVPAExPlus::CreateFromFile) and streams (IPersistStreamInitEx), because a file of
    // 50 kilobytes can hold an image of gigabytes. Initially 2^28 = 268,435,456: 16384 x 16384 grey pixels, taking
    // 256 MB as bytes, 512 as words, 1024 as doublewords or floats. With a limit, an image may also have no more
    // than 2^24 rows or columns, because these take memory too. 0 means no limits. Creating or loading an image
    // does not change the limit; streams do not keep it.
    //   "IImageFile::put_SampleLimit: the limit must not be negative."
    // A larger image fails before memory is allocated for it, and the image stays as it was:
    //   "IImageVPAEx::CreateFromFile: the image has 400000000 samples, more than the limit of 268435456."
    //   "IImageVPAEx::CreateFromFile: the image has 20000000 rows or columns, more than the limit of 16777216."
    // IPersistStreamInit::Load reports the same under its own name (E_FAIL).
    virtual HRESULT STDMETHODCALLTYPE get_SampleLimit(LONG* hVal) = 0;

    // The largest image that this object loads, in samples: width times height times bands.
    // It applies to files (IImageVPAExPlus::CreateFromFile) and streams (IPersistStreamInitEx), because a file of
    // 50 kilobytes can hold an image of gigabytes. Initially 2^28 = 268,435,456: 16384 x 16384 grey pixels, taking
    // 256 MB as bytes, 512 as words, 1024 as doublewords or floats. With a limit, an image may also have no more
    // than 2^24 rows or columns, because these take memory too. 0 means no limits. Creating or loading an image
    // does not change the limit; streams do not keep it.
    //   "IImageFile::put_SampleLimit: the limit must not be negative."
    // A larger image fails before memory is allocated for it, and the image stays as it was:
    //   "IImageVPAEx::CreateFromFile: the image has 400000000 samples, more than the limit of 268435456."
    //   "IImageVPAEx::CreateFromFile: the image has 20000000 rows or columns, more than the limit of 16777216."
    // IPersistStreamInit::Load reports the same under its own name (E_FAIL).
    virtual HRESULT STDMETHODCALLTYPE put_SampleLimit(LONG newVal) = 0;

    // Loads a page of an image file, whose content shows the format, into this object.
    // PNG, BMP, PGM and PPM (plain and raw), PAM, PFM, TIFF and JPEG; on Windows also GIF, ICO, EMF and WMF, by the
    // system's loader. Page counts from 0; all formats but TIFF have one page.
    // Grey stays grey with 8 or 16 bits; colour becomes three bands (red, green, blue); an alpha channel is
    // dropped; gamma and colour profiles are not applied. PNG grey of 1, 2 and 4 bits is scaled to 0..255; PGM, PPM
    // and PAM values are kept as they are, whatever maximum the file declares, but black and white of PAM become 0
    // and 255. PFM gives floats with all their bits, and its unit, which is not applied, as the text "PFM scale",
    // from which saving takes it. A palette is applied; it gives one band if all entries in use are grey. Pixels
    // per metre (PNG, BMP) become the pixel size. A PNG file that this library has saved gives back all that
    // streams keep: with the coordinate map, the texts and the bytes also the luminance range, the number of bins,
    // the band to process and the settings of the display; of other files these stay as they are. A failure leaves
    // the image as it was.
    // TIFF: unsigned integers of 8, 16 and 32 bits and floating point of 32 keep their type, 1, 2 and 4 bits are
    // scaled to 0..255, 9 to 15 bits keep their values in 16; signed integers of 8 and 16 bits become floating
    // point. White as zero is inverted. Further samples of a grey pixel are bands unless they are transparency. The
    // resolution becomes the pixel size; before it, OME-XML and the unit of ImageJ count. JPEG colour all of whose
    // pixels are grey becomes one band. The rotation that a file asks of displays is not applied.
    //   "IImageVPAEx::CreateFromFile: this format is loaded on Windows only."
    //   "IImageVPAEx::CreateFromFile: failed to open file."
    //   "IImageVPAEx::CreateFromFile: unknown file format." and the texts of the readers, each under its own name
    //   "IImageFile::LoadFromFile: the file has no such page."
    virtual HRESULT STDMETHODCALLTYPE LoadFromFile(BSTR FileName, LONG Page) = 0;

    // Number of images in a file. Reads what the format needs to count them, and changes nothing.
    // Failures as of LoadFromFile.
    virtual HRESULT STDMETHODCALLTYPE GetNumberOfPages(BSTR FileName, LONG* hVal) = 0;

    // Number of low bits of a sample that are in use, 0 if that is not known.
    // Cameras of 10, 12 and 14 bits use so many of 16. Creating an image sets it to 0; loading a file sets it where
    // the file says so (sBIT of PNG, the maximum of PGM, PPM and PAM), and copies have that of their source. It
    // describes the samples and is not enforced: saving ignores it if a larger sample exists. Only for images of 8
    // and 16 bits: "IImageFile::put_SignificantBits: the number of bits must be below that of the samples."
    virtual HRESULT STDMETHODCALLTYPE get_SignificantBits(LONG* hVal) = 0;

    // Number of low bits of a sample that are in use, 0 if that is not known.
    // Cameras of 10, 12 and 14 bits use so many of 16. Creating an image sets it to 0; loading a file sets it where
    // the file says so (sBIT of PNG, the maximum of PGM, PPM and PAM), and copies have that of their source. It
    // describes the samples and is not enforced: saving ignores it if a larger sample exists. Only for images of 8
    // and 16 bits: "IImageFile::put_SignificantBits: the number of bits must be below that of the samples."
    virtual HRESULT STDMETHODCALLTYPE put_SignificantBits(LONG newVal) = 0;

    // Where the pixel size comes from, for people: "PNG pHYs chunk", "stream", "client" and so on.
    // Null when the pixel size is not known. The caller frees the string.
    virtual HRESULT STDMETHODCALLTYPE get_CalibrationSource(BSTR* hVal) = 0;

    // Quality of JPEG files that are saved, 1 (smallest) to 100 (best); initially 90.
    //   "IImageFile::put_Quality: the quality must be 1 to 100."
    virtual HRESULT STDMETHODCALLTYPE get_Quality(LONG* hVal) = 0;

    // Quality of JPEG files that are saved, 1 (smallest) to 100 (best); initially 90.
    //   "IImageFile::put_Quality: the quality must be 1 to 100."
    virtual HRESULT STDMETHODCALLTYPE put_Quality(LONG newVal) = 0;

    // Writes the image into a stream as an image file, PNG for instance, from the stream's position on.
    // As SaveToFile, with its texts; IFF_ByExtension is an unknown format. The file is complete before the first
    // byte is written. Stream is an object with IStream; E_NOINTERFACE for others. Results of the stream are passed
    // on; STG_E_CANTSAVE when it stores too little. (IPersistStreamInit saves in a form of its own, which holds
    // every type of pixels.)
    virtual HRESULT STDMETHODCALLTYPE SaveToStream(IUnknown* Stream, ImageFileFormat Format) = 0;

    // Loads a page of the image file that a stream holds from its position to its end.
    // As LoadFromFile, with its texts. The stream is read completely before anything changes; E_FAIL for more than
    // 2^31 - 1 bytes. Results of the stream are passed on.
    virtual HRESULT STDMETHODCALLTYPE LoadFromStream(IUnknown* Stream, LONG Page) = 0;
};
DEFINE_GUID(IID_IImageFile, 0xdade9363, 0x84f7, 0x4ecb, 0xb6,0x8f, 0x53,0x4b,0x9d,0x51,0xe5,0xdc);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageFile, 0xdade9363, 0x84f7, 0x4ecb, 0xb6,0x8f, 0x53,0x4b,0x9d,0x51,0xe5,0xdc)
#endif

// Texts and bytes that travel with the image under keywords. Streams and PNG files keep all of them. Keywords have
// 1 to 79 Latin-1 characters without leading, trailing or double blanks, so that other programs find the texts in
// PNG files. Other keywords, empty texts and several entries of one keyword come from streams and files only;
// putting an entry changes the first one of its keyword, and the entries keep their order. An index below 0 or
// beyond the last entry: "IImageEntries::GetTextEntry: Index is out of range.", with the name of the method.
// Another keyword: "IImageEntries::PutTextEntry: invalid keyword.", and likewise from PutBinaryEntry.
MIDL_INTERFACE("ea41b692-ea17-4aad-afe0-f80368ec9549") IImageEntries : public IUnknown {
    // Number of text entries.
    virtual HRESULT STDMETHODCALLTYPE get_NumberOfTextEntries(LONG* hVal) = 0;

    // Keyword and text of an entry; the caller frees the strings.
    virtual HRESULT STDMETHODCALLTYPE GetTextEntry(LONG Index, BSTR* Keyword, BSTR* Text) = 0;

    // Adds or replaces an entry; a null or empty text removes all entries of the keyword.
    // A text under the keyword "Description" is the image's description and is not counted here.
    virtual HRESULT STDMETHODCALLTYPE PutTextEntry(BSTR Keyword, BSTR Text) = 0;

    // Removes a text entry.
    virtual HRESULT STDMETHODCALLTYPE RemoveTextEntry(LONG Index) = 0;

    // Number of binary entries.
    virtual HRESULT STDMETHODCALLTYPE get_NumberOfBinaryEntries(LONG* hVal) = 0;

    // Keyword of an entry and its number of bytes; the caller frees the string.
    virtual HRESULT STDMETHODCALLTYPE GetBinaryEntry(LONG Index, BSTR* Keyword, LONG* Size) = 0;

    // Copies Size bytes of an entry, starting at Offset, into the caller's memory.
    // Nothing is copied unless all of them exist: "IImageEntries::ReadBinaryEntry: the bytes are out of range."
    virtual HRESULT STDMETHODCALLTYPE ReadBinaryEntry(LONG Index, LONG Offset, LONG Size, unsigned char* Bytes) = 0;

    // Adds or replaces an entry with a copy of the bytes.
    // An entry may be empty (Bytes may then be null). A negative size:
    // "IImageEntries::PutBinaryEntry: Size must not be negative."
    virtual HRESULT STDMETHODCALLTYPE PutBinaryEntry(BSTR Keyword, LONG Size, unsigned char* Bytes) = 0;

    // Removes a binary entry.
    virtual HRESULT STDMETHODCALLTYPE RemoveBinaryEntry(LONG Index) = 0;
};
DEFINE_GUID(IID_IImageEntries, 0xea41b692, 0xea17, 0x4aad, 0xaf,0xe0, 0xf8,0x03,0x68,0xec,0x95,0x49);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageEntries, 0xea41b692, 0xea17, 0x4aad, 0xaf,0xe0, 0xf8,0x03,0x68,0xec,0x95,0x49)
#endif

// A frame in the memory of a camera's driver.
typedef struct SFrame {
    // the first byte of the row that comes first in memory
    unsigned char* m_pBuffer;
    // of the buffer in bytes
    LONGLONG m_llSize;
    // in pixels
    LONG m_lWidth;
    LONG m_lHeight;
    // a FramePixelFormat
    LONG m_lPixelFormat;
    // in bytes, from a row to the next; 0: the rows are one stream
    LONG m_lRowPitch;
    // not 0: the row that comes first in memory is the bottom row
    LONG m_lBottomUp;
    // a FrameMosaic, for formats with colour filters; else it does not matter
    LONG m_lMosaic;
} SFrame;

// Makes images from the frames of cameras.
MIDL_INTERFACE("d4df8416-867f-45a9-adae-63504077b677") IImageFrames : public IUnknown {
    // Replaces the image by a frame, converted from the layout of its pixel format.
    // What else the image holds is replaced as by IImageVPAExPlus::Create, and IImageFile::SignificantBits becomes
    // 10, 12 or 14, or 0 for formats of 8 and 16 bits. The buffer is read during the call only.
    // An image that already has this size, type and number of bands keeps its memory, so that a stream of frames
    // takes none.
    //
    // Rows. With a pitch each row begins in a new byte, m_lRowPitch behind the one before it; bytes after the last
    // sample of a row are not read. With 0 nothing lies between the last sample of a row and the first of the next,
    // as cameras send frames without padding of lines: where a row of a packed format does not fill its last byte
    // or group, the next row begins within it. A driver that starts every row in a new byte has to give its pitch.
    // Planes follow one another, each of m_lHeight rows.
    //
    // Mosaics of colour filters, whose order is that of the first two rows in memory. FM_Keep keeps the samples.
    // FM_Grey is the binomial mean of 3x3 samples, weights (1 2 1) along both axes, over 16 and rounded down, which
    // is IImageProcess::Gaussian3x3: red and blue weigh 1/4 and green 1/2 at every pixel, and edges stay in place.
    // FM_Bands gives red, green and blue by the linear filters of Malvar, He and Cutler (2004): sums of 5x5 samples
    // with integer weights over 16, floor((sum + 8) / 16), limited to the range of the format. Outside samples are
    // mirrored without repeating the edge.
    //
    // Fails in this order, always with E_FAIL, and the image stays as it was:
    //   "IImageFrames::CreateFromFrame: no buffer."
    //   "IImageFrames::CreateFromFrame: unknown pixel format."
    //   "IImageFrames::CreateFromFrame: a mosaic is kept, or becomes grey or bands." (Bayer formats)
    //   "IImageFrames::CreateFromFrame: width and height must be positive."
    //   without a text: more than 2^31 - 1 samples in a band, or more memory than there is
    //   "IImageFrames::CreateFromFrame: the row pitch is shorter than a row."
    //   "IImageFrames::CreateFromFrame: the buffer is shorter than the frame." (m_llSize, up to the last sample)
    //   "IImageFrames::CreateFromFrame: the buffer cannot be read." (so says the operating system)
    virtual HRESULT STDMETHODCALLTYPE CreateFromFrame(SFrame* Frame) = 0;
};
DEFINE_GUID(IID_IImageFrames, 0xd4df8416, 0x867f, 0x45a9, 0xad,0xae, 0x63,0x50,0x40,0x77,0xb6,0x77);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageFrames, 0xd4df8416, 0x867f, 0x45a9, 0xad,0xae, 0x63,0x50,0x40,0x77,0xb6,0x77)
#endif

// What scripts need of the system: streams, the clipboard, a dialog for folders, names; and one measurement.
// Dual: compiled languages with variants call it early bound, scripts by name. (A dual interface has to stand above
// the first dispatch interface, or the interface compiler declares the system's IDispatch twice.) Rules:
//  (1) A stream is any object with IStream, of this object or another; E_NOINTERFACE for others.
//  (2) Results of streams are passed on. Positions and sizes are in bytes.
//  (3) An array of bytes is a VARIANT. One that is given may be of any type of numbers: DISP_E_TYPEMISMATCH for
//      what is no array, DISP_E_OVERFLOW for an element beyond 0..255. Off Windows there are no arrays of this
//      kind: E_NOTIMPL.
//  (4) The clipboard and the dialog are Windows': E_NOTIMPL elsewhere. Methods of the clipboard fail, each under
//      its name, with "IVBHelper::CopyImage: the clipboard is in use."
MIDL_INTERFACE("ab13b9e0-d78d-40ad-9a27-cc82a8a736f6") IVBHelper : public IDispatch {
    // Opens a file as a stream.
    // On Windows others may read the file meanwhile for FSM_Read, and otherwise not open it.
    //   "IVBHelper::OpenFileStream: unknown mode."
    // A file that cannot be opened gives the system's result, STG_E_FILENOTFOUND for instance, without a text.
    virtual HRESULT STDMETHODCALLTYPE OpenFileStream(BSTR FileName, FileStreamMode Mode, IUnknown** hVal) = 0;

    // Creates an empty stream in memory.
    virtual HRESULT STDMETHODCALLTYPE CreateMemoryStream(IUnknown** hVal) = 0;

    // Where the next byte of a stream is read or written; counted from 0.
    // "IVBHelper::put_StreamPosition: the position must be a whole number of bytes." (also below 0, beyond 2^53)
    virtual HRESULT STDMETHODCALLTYPE get_StreamPosition(IUnknown* Stream, double* hVal) = 0;

    // Where the next byte of a stream is read or written; counted from 0.
    // "IVBHelper::put_StreamPosition: the position must be a whole number of bytes." (also below 0, beyond 2^53)
    virtual HRESULT STDMETHODCALLTYPE put_StreamPosition(IUnknown* Stream, double newVal) = 0;

    // Number of bytes in a stream.
    virtual HRESULT STDMETHODCALLTYPE get_StreamSize(IUnknown* Stream, double* hVal) = 0;

    // Reads the rest of a stream as text: UTF-8, or UTF-16 behind a byte order mark.
    // A byte order mark at the start is left out. Bytes that are no UTF-8 become U+FFFD. E_FAIL for more than
    // 2^31 - 1 bytes.
    virtual HRESULT STDMETHODCALLTYPE ReadText(IUnknown* Stream, BSTR* hVal) = 0;

    // Writes a text into a stream, as UTF-8 without a byte order mark.
    virtual HRESULT STDMETHODCALLTYPE WriteText(IUnknown* Stream, BSTR Text) = 0;

    // Reads bytes of a stream as an array of VT_UI1: up to Size of them, or with -1 all that are left.
    // At the end the array is shorter, or empty. E_FAIL for more than 2^31 - 1 bytes.
    //   "IVBHelper::ReadBytes: Size must not be below -1."
    virtual HRESULT STDMETHODCALLTYPE ReadBytes(IUnknown* Stream, LONG Size, VARIANT* hVal) = 0;

    // Writes an array of bytes into a stream.
    virtual HRESULT STDMETHODCALLTYPE WriteBytes(IUnknown* Stream, VARIANT Bytes) = 0;

    // The text on the clipboard; empty where there is none.
    // Setting it replaces everything that is there.
    virtual HRESULT STDMETHODCALLTYPE get_ClipboardText(BSTR* hVal) = 0;

    // The text on the clipboard; empty where there is none.
    // Setting it replaces everything that is there.
    virtual HRESULT STDMETHODCALLTYPE put_ClipboardText(BSTR newVal) = 0;

    // Puts an image on the clipboard, in place of what is there: as PNG and as a bitmap (CF_DIB).
    // The PNG file is what IImageFile::SaveToFile writes; images that the format does not hold go without it. The
    // bitmap has the levels of 8-bit images with one or three bands; others go from the least level to the largest.
    //   "IVBHelper::CopyImage: no image."
    virtual HRESULT STDMETHODCALLTYPE CopyImage(IImageVPA* Image) = 0;

    // A new image from the clipboard, from its PNG file or else from its bitmap; null (S_FALSE) without either.
    // Failures as of IImageFile::LoadFromFile and IDIBImage::CreateImage.
    virtual HRESULT STDMETHODCALLTYPE PasteImage(IImageVPA** hVal) = 0;

    // Lets the user choose a folder in the system's dialog; an empty text (S_FALSE) when the dialog is cancelled.
    // StartFolder is chosen at first; empty for none. The thread must belong to a single-threaded apartment.
    virtual HRESULT STDMETHODCALLTYPE BrowseForFolder(BSTR Title, BSTR StartFolder, BSTR* hVal) = 0;

    // The folder for temporary files, with a separator behind it.
    virtual HRESULT STDMETHODCALLTYPE get_TemporaryFolder(BSTR* hVal) = 0;

    // The name of a file in that folder which does not exist, with an extension such as ".png".
    // The file is not created. "IVBHelper::TemporaryName: the extension must not hold a folder."
    virtual HRESULT STDMETHODCALLTYPE TemporaryName(BSTR Extension, BSTR* hVal) = 0;

    // Loads an image file and measures a band of it, as the command line does without further options.
    // The grey levels of all pixels, an automatic threshold, and the dark phase or, unless Bright is 0, the bright
    // one. Of 8-bit images the histogram has 256 bins. That of others reaches from the smallest to the largest
    // level; for the threshold its bins are added up to at most 1024.
    //   "IVBHelper::MeasureFile: unknown threshold."
    //   "IVBHelper::MeasureFile: the image has no such band."
    // and the texts of IImageFile::LoadFromFile and of the histogram's methods.
    virtual HRESULT STDMETHODCALLTYPE MeasureFile(BSTR FileName, AutoThresholdType Threshold, LONG Bright,
        LONG BandIndex, SFileMeasurements* hVal) = 0;
};
DEFINE_GUID(IID_IVBHelper, 0xab13b9e0, 0xd78d, 0x40ad, 0x9a,0x27, 0xcc,0x82,0xa8,0xa7,0x36,0xf6);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IVBHelper, 0xab13b9e0, 0xd78d, 0x40ad, 0x9a,0x27, 0xcc,0x82,0xa8,0xa7,0x36,0xf6)
#endif

// Counts over [Left, Right]. Statistics are computed on bin indices and mapped to locations (the caller's units) at
// the end: location = A bin + B. Notation below: n bins, c[i] counts, N their sum, p[i] = c[i] / N.
//
// Clients may write any counts through Bins. N is a 64-bit sum, so totals of more than 2^31 counts are measured
// correctly; sums weighted by the bin index are exact. Negative counts follow the formulas as written; a variance
// that would be negative is 0. Results have the same bits on every platform.
MIDL_INTERFACE("398ff9d8-efff-4d4b-9b58-32a70913438c") IHistogram : public IUnknown {
    // Makes the bins, all zero, and stores the range. Nothing is checked: zero or a negative number of bins makes a
    // histogram without bins; Left may exceed Right. E_FAIL without memory and for more than 2^24 bins; the old
    // bins and range then stay.
    virtual HRESULT STDMETHODCALLTYPE Create(LONG NumberOfBins, double Left, double Right) = 0;

    // Copies the bins and the range of any histogram. S_FALSE when it is this object. A failure of the source is
    // passed on without a text; E_FAIL when its bins are null or not readable. Neither changes anything.
    virtual HRESULT STDMETHODCALLTYPE CreateFromHistogram(IHistogram* Histogram) = 0;

    // Sets all counts to 0.
    virtual HRESULT STDMETHODCALLTYPE Zero() = 0;

    // Number of bins.
    virtual HRESULT STDMETHODCALLTYPE get_NumberOfBins(LONG* hVal) = 0;

    // Left end of the range, as it was set.
    virtual HRESULT STDMETHODCALLTYPE get_Left(double* hVal) = 0;

    // Right end of the range, as it was set.
    virtual HRESULT STDMETHODCALLTYPE get_Right(double* hVal) = 0;

    // The counts themselves; null without bins.
    // The caller may write them. Valid until the next Create or CreateFromHistogram.
    virtual HRESULT STDMETHODCALLTYPE get_Bins(LONG** hVal) = 0;

    // Automatic thresholds. Outputs are first set to 0.0 (AutoThresholdTrim: to Left and Right of the histogram)
    // and keep that on failure unless stated otherwise. All but AutoThresholdTrim and AutoThresholdSearchForMinimum
    // report "<Method>: empty histogram" when N < 1, the entropy with a final full stop.

    // Threshold of greatest variance between the classes (Otsu 1979).
    // The classes are the bins 0..t and t+1..n-1: the threshold bin t belongs to the lower one. Only thresholds
    // that leave each class the given probability are tried. Equal maxima in neighbouring bins give the middle one,
    // rounded down; bin 0 when no threshold qualifies. The probabilities are not checked; NaN excludes every
    // threshold.
    // "IHistogram::AutoThresholdMinimizeVariance: empty histogram"
    virtual HRESULT STDMETHODCALLTYPE AutoThresholdMinimizeVariance(double MinimumProbabilityLeft,
        double MinimumProbabilityRight, double* Threshold) = 0;

    // The locations beyond which the given fractions of the counts lie; the outermost bins where there are none.
    //   "IHistogram::AutoThresholdTrim: the amount trimmed on the left must be between 0.0 and 1.0."
    //   "IHistogram::AutoThresholdTrim: the amount trimmed on the right must be between 0.0 and 1.0."
    //   "IHistogram::AutoThresholdTrim: the total amount of trimming must be less than 1.0."
    virtual HRESULT STDMETHODCALLTYPE AutoThresholdTrim(double TrimLeft, double* Left, double TrimRight,
        double* Right) = 0;

    // Threshold at the emptiest bin in the middle of the trimmed distribution.
    // The search covers 1.2 standard deviations on either side of the centre. Texts of AutoThresholdTrim, and
    //   "IHistogram::AutoThresholdSearchForMinimum: no counts in bins"; the output is then the middle bin, as a bin
    //   index
    virtual HRESULT STDMETHODCALLTYPE AutoThresholdSearchForMinimum(double TrimLeft, double TrimRight,
        double* Threshold) = 0;

    // Threshold of greatest probability of correct classification under two normal distributions.
    // Their moments are those of the two classes, corrected for truncation. Of equal maxima the lowest is taken.
    // S_FALSE and the location of bin 0 when no threshold scores above 0. Thresholds lie between the last bins at
    // which the counts from either end do not exceed the given share of N; NaN acts as 0.
    // "IHistogram::AutoThresholdGaussianMixture: empty histogram"
    virtual HRESULT STDMETHODCALLTYPE AutoThresholdGaussianMixture(double MinimumProbabilityLeft,
        double MinimumProbabilityRight, double* Threshold) = 0;

    // Threshold of greatest sum of the entropies of the two classes (Kapur, Sahoo and Wong 1985).
    // The threshold bin counts in both. Of equal maxima the lowest is taken; bin 0 when no threshold leaves the
    // given probabilities; NaN restricts nothing. "IHistogram::AutoThresholdMaximizeEntropy: empty histogram." for
    // N = 0.
    virtual HRESULT STDMETHODCALLTYPE AutoThresholdMaximizeEntropy(double MinimumProbabilityLeft,
        double MinimumProbabilityRight, double* Threshold) = 0;

    // Threshold above which an exponential distribution has the fraction TrimRight.
    // The distribution has the histogram's mean, in bins from bin 0; the result is A (-ln(TrimRight) mean) + B.
    // TrimRight = 0 gives an infinite threshold.
    //   "IHistogram::AutoThresholdExponential: the amount trimmed on the right must be between 0.0 and 1.0."
    //   "IHistogram::AutoThresholdExponential: empty histogram"
    //   "IHistogram::AutoThresholdExponential: No bins."
    virtual HRESULT STDMETHODCALLTYPE AutoThresholdExponential(double TrimRight, double* Threshold) = 0;

    // Statistics. All but Mode, Minimum, Maximum and MaximumCount report "IHistogram::get_<Name>: empty histogram"
    // when N < 1. m2, m3 and m4 are central moments, divided by N.

    // Entropy of the counts in nats: -sum p ln p. 0.0 on failure.
    virtual HRESULT STDMETHODCALLTYPE get_Entropy(double* hVal) = 0;

    // Skewness of the counts: m3 / m2^1.5 of the bin indices. NaN when all counts lie in one bin; 0.0 on failure.
    virtual HRESULT STDMETHODCALLTYPE get_Skew(double* hVal) = 0;

    // Excess kurtosis of the counts: m4 / m2^2 - 3 of the bin indices. NaN when all counts lie in one bin; 0.0 on
    // failure.
    virtual HRESULT STDMETHODCALLTYPE get_Kurtosis(double* hVal) = 0;

    // The largest count; 0 without bins.
    virtual HRESULT STDMETHODCALLTYPE get_MaximumCount(LONG* hVal) = 0;

    // Mean location: A sum(i p[i]) + B. n / 2 on failure.
    virtual HRESULT STDMETHODCALLTYPE get_Mean(double* hVal) = 0;

    // Location of the first bin at which half the counts are reached. n / 2 on failure.
    virtual HRESULT STDMETHODCALLTYPE get_Median(double* hVal) = 0;

    // Location of the lowest bin with the largest count.
    virtual HRESULT STDMETHODCALLTYPE get_Mode(double* hVal) = 0;

    // Variance of the locations: A^2 sum(p (i - mean)^2). 0.0 on failure.
    virtual HRESULT STDMETHODCALLTYPE get_Variance(double* hVal) = 0;

    // Location of the lowest bin with a count; of the last bin if there is none.
    virtual HRESULT STDMETHODCALLTYPE get_Minimum(double* hVal) = 0;

    // Location of the highest bin with a count; of the first bin if there is none.
    virtual HRESULT STDMETHODCALLTYPE get_Maximum(double* hVal) = 0;

    // Trimmed mean and winsorized standard deviation.
    // The mean leaves out the fraction Trim of the counts at each end (see Trim). The winsorized standard deviation
    // is divided by (1 - 2 Trim): the bins outside the lowest and the highest bin left are empty, and each of these
    // two gains the number of counts trimmed from one end. Both outputs are first set to 0.0. With Trim of 0.5 or
    // more, or NaN, or when trimming leaves no count, both stay 0.0: S_FALSE.
    // "IHistogram::GetTrimmedStatistics: empty histogram"
    virtual HRESULT STDMETHODCALLTYPE GetTrimmedStatistics(double Trim, double* Mean, double* StandardDeviation) = 0;

    // Median, and the median of the absolute deviations from it.
    // The second is at least one bin when n > 1. On failure they are n / 2 and 0.0.
    // "IHistogram::GetMedianStatistics: empty histogram"
    virtual HRESULT STDMETHODCALLTYPE GetMedianStatistics(double* Median, double* MedianAbsoluteDeviation) = 0;

    // The location of a bin index: A Bin + B.
    // If the ends of the range are whole numbers and it holds exactly n of them, bin i has the location Left + i;
    // otherwise bin i has the centre of the i-th of n equal intervals. Without bins, and for one bin over one whole
    // number: A = 1, B = 0. A range without width has A = 0, and LocationToBin is then infinite or NaN.
    virtual HRESULT STDMETHODCALLTYPE BinToLocation(double Bin, double* Location) = 0;

    // The bin index of a location, with its fraction.
    virtual HRESULT STDMETHODCALLTYPE LocationToBin(double dLocation, double* Bin) = 0;

    // The two coefficients of location = A Bin + B.
    virtual HRESULT STDMETHODCALLTYPE GetBinToLocationMapping(double* A, double* B) = 0;

    // Binomial smoothing with 3, 5, 7 or 9 weights, mirrored at the ends without repeating the end bin, rounded
    // down. A histogram with fewer bins than the kernel's half width + 1 stays as it is: S_FALSE.
    virtual HRESULT STDMETHODCALLTYPE Smooth3() = 0;

    // Binomial smoothing with 3, 5, 7 or 9 weights, mirrored at the ends without repeating the end bin, rounded
    // down. A histogram with fewer bins than the kernel's half width + 1 stays as it is: S_FALSE.
    virtual HRESULT STDMETHODCALLTYPE Smooth5() = 0;

    // Binomial smoothing with 3, 5, 7 or 9 weights, mirrored at the ends without repeating the end bin, rounded
    // down. A histogram with fewer bins than the kernel's half width + 1 stays as it is: S_FALSE.
    virtual HRESULT STDMETHODCALLTYPE Smooth7() = 0;

    // Binomial smoothing with 3, 5, 7 or 9 weights, mirrored at the ends without repeating the end bin, rounded
    // down. A histogram with fewer bins than the kernel's half width + 1 stays as it is: S_FALSE.
    virtual HRESULT STDMETHODCALLTYPE Smooth9() = 0;

    // Removes the fraction Trim of the counts from each end.
    // That is N Trim counts, rounded to the nearest whole number: bins are emptied until the counts so far exceed
    // that number, and the last of them keeps the excess. 0.5 or more removes everything, NaN nothing; a negative
    // fraction adds to the first and last bin, up to 2^31 - 1. "IHistogram::Trim: empty histogram"
    virtual HRESULT STDMETHODCALLTYPE Trim(double Trim) = 0;

    // Decomposes the counts into a pyramid of pair averages (Haar): the detail and smooth bins.
    // Both have n entries. A level of m values has its coefficients at h + j, h = (m + 1) / 2:
    // smooth = (x[2j] + x[2j+1]) / 2 toward zero, detail = smooth - x[2j]; an odd last value is passed on. The
    // averages form the next level; entry 0 of both holds the last one. The bins are null before the first
    // Decompose and stay until the next, or until the number of bins changes.
    virtual HRESULT STDMETHODCALLTYPE Decompose() = 0;

    // The detail bins of the last Decompose; null before, and when the number of bins has changed since.
    virtual HRESULT STDMETHODCALLTYPE get_DetailBins(LONG** hVal) = 0;

    // The smooth bins of the last Decompose; null before, and when the number of bins has changed since.
    virtual HRESULT STDMETHODCALLTYPE get_SmoothBins(LONG** hVal) = 0;
};
DEFINE_GUID(IID_IHistogram, 0x398ff9d8, 0xefff, 0x4d4b, 0x9b,0x58, 0x32,0xa7,0x09,0x13,0x43,0x8c);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IHistogram, 0x398ff9d8, 0xefff, 0x4d4b, 0x9b,0x58, 0x32,0xa7,0x09,0x13,0x43,0x8c)
#endif

// One bit per pixel. Rows are stored top-down, each of bmWidthBytes (even) bytes; pixel x is bit 0x80 >> (x mod 8)
// of byte x / 8; 1 is foreground. Bits beyond the width may have any value.
MIDL_INTERFACE("ae6999a0-d64b-4593-9d8d-fa914cd4fa65") IBitmap : public IUnknown {
    // Number of columns.
    virtual HRESULT STDMETHODCALLTYPE get_Width(LONG* hVal) = 0;

    // Number of rows.
    virtual HRESULT STDMETHODCALLTYPE get_Height(LONG* hVal) = 0;

    // Sets the size; the pixels stay, byte for byte, or are cleared.
    // Existing bytes keep their values under the new geometry and added bytes are 0; bZero != 0 clears all. A
    // bitmap also takes a bit for each row.
    // "CBITMAP::Create: width must be positive" / "CBITMAP::Create: height must be positive"
    virtual HRESULT STDMETHODCALLTYPE Create(LONG Width, LONG Height, LONG bZero) = 0;

    // Copies any bitmap, padding included.
    // It is read through its record: another component's rows may be longer or shorter. S_FALSE when it is this
    // object. A source without pixels gives the texts of Create. E_FAIL without a text for a record whose bits are
    // null or not readable, that does not have one bit per pixel, or whose rows are too short for its width.
    virtual HRESULT STDMETHODCALLTYPE CreateFromBitmap(IBitmap* Bitmap) = 0;

    // Clears all bits, including those beyond the width; marks no row as modified.
    virtual HRESULT STDMETHODCALLTYPE Zero() = 0;

    // Sets all bits, including those beyond the width; marks no row as modified.
    virtual HRESULT STDMETHODCALLTYPE One() = 0;

    // Draws part of a row: the pixels Left..Right, clipped.
    // S_FALSE when all lie outside.
    // "IBitmapProcess::DrawHorizontalLine: left cannot be larger than right." (DISP_E_EXCEPTION)
    virtual HRESULT STDMETHODCALLTYPE DrawHorizontalLine(LONG Row, LONG Left, LONG Right, DrawType How) = 0;

    // Draws a filled rectangle, both ends included.
    // S_FALSE when it misses the bitmap. With Left > Right and both inside, nothing is drawn and the result is
    // S_OK, although the error information holds the text of DrawHorizontalLine; Top > Bottom: S_OK.
    virtual HRESULT STDMETHODCALLTYPE DrawRectangle(LONG Left, LONG Top, LONG Right, LONG Bottom, DrawType How) = 0;

    // Draws a filled disk.
    // It covers the pixels whose centres lie at most Radius from the centre; S_FALSE when it misses the bitmap or
    // an argument is NaN. A negative radius draws nothing. A row between the first and the last that holds no pixel
    // centre leaves the text of DrawHorizontalLine in the error information, although the result is S_OK.
    virtual HRESULT STDMETHODCALLTYPE DrawDisk(double XCenter, double YCenter, double Radius, DrawType How) = 0;

    // Draws a line one pixel wide.
    // It is the Bresenham line between the end points, each floor(v + 0.5) and both included. Always S_OK, even
    // when no pixel lies in the bitmap. Coordinates are clamped to 32 bits; NaN draws nothing.
    virtual HRESULT STDMETHODCALLTYPE DrawLine(double X1, double Y1, double X2, double Y2, DrawType How) = 0;

    // The record; bmBits points to the bitmap's own memory, valid until the next creation.
    virtual HRESULT STDMETHODCALLTYPE get_Bitmap(BITMAP* hVal) = 0;

    // The bytes of a row, for reading.
    // First set to null. "IBitmapProcess::GetRowPtr: row is out of bounds"
    virtual HRESULT STDMETHODCALLTYPE GetRowPtr(LONG Row, unsigned char** hRow) = 0;

    // The byte that holds a pixel and the pixel's bit in it, for reading.
    // First set to null and 0. "IBitmapProcess::GetPixelPtr: Y is out of bounds", then "... X is out of bounds"
    virtual HRESULT STDMETHODCALLTYPE GetPixelPtr(LONG X, LONG Y, unsigned char** hRow, unsigned char* Mask) = 0;

    // The value of a pixel: 1 or 0. S_FALSE and 0 outside.
    virtual HRESULT STDMETHODCALLTYPE get_Bit(LONG X, LONG Y, LONG* hVal) = 0;

    // Sets a pixel (any value but 0) or clears it (0). Outside the bitmap it fails with the texts of GetPixelPtr.
    virtual HRESULT STDMETHODCALLTYPE put_Bit(LONG X, LONG Y, LONG newVal) = 0;
};
DEFINE_GUID(IID_IBitmap, 0xae6999a0, 0xd64b, 0x4593, 0x9d,0x8d, 0xfa,0x91,0x4c,0xd4,0xfa,0x65);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IBitmap, 0xae6999a0, 0xd64b, 0x4593, 0x9d,0x8d, 0xfa,0x91,0x4c,0xd4,0xfa,0x65)
#endif

// Changes a bitmap in place: write access to its rows, binary morphology, and the way to its blobs.
// Rules of all methods from RegionOfInterest on:
//  (1) Region. An operation is computed on the whole bitmap, then the pixels of the region of interest take its
//      result and all others stay. Neighbours outside the region are therefore read as they are.
//  (2) Border. Pixels outside the bitmap do not take part: an erosion never removes a pixel because of them, a
//      dilation never adds one, so opening and closing are idempotent and a closing removes nothing. Neighbourhood
//      tables and thinning see background there. Background that touches the edge of the bitmap is
//      connected to the outside and is no hole.
//  (3) Connectivity of the foreground. The background has the other one. A value other than CT_4 and CT_8 gives
//      E_INVALIDARG.
//  (4) Bits beyond the width are neither read nor kept.
//  (5) A bitmap without pixels gives S_FALSE, and outputs are 0 or null.
//  (6) A second bitmap may be any component's, or this object itself; it is read through its record and must have
//      the same size: "IBitmapProcess::AndEquals: the bitmaps have different sizes.", under the method's own name.
//      E_FAIL without a text for a record that CreateFromBitmap would refuse. A failure of the bitmap or the region
//      is passed on. Both are asked before anything changes; if they change this bitmap's size meanwhile, E_FAIL.
//  (7) A failed call changes nothing.
MIDL_INTERFACE("467413e9-0f32-4fe5-a3f4-da7a3a33cf7a") IBitmapProcess : public IBitmap {
    // The bytes of a row, for writing: like GetRowPtr, but marks the row as modified.
    virtual HRESULT STDMETHODCALLTYPE GetWriteRowPtr(LONG Row, unsigned char** hRow) = 0;

    // The byte that holds a pixel, for writing: like GetPixelPtr, but marks the row as modified.
    virtual HRESULT STDMETHODCALLTYPE GetWritePixelPtr(LONG X, LONG Y, unsigned char** hRow, unsigned char* Mask) = 0;

    // The region of interest, as a new reference; null stands for the whole bitmap.
    virtual HRESULT STDMETHODCALLTYPE get_RegionOfInterest(IRegionOfInterest** hVal) = 0;

    // Sets the region of interest; null stands for the whole bitmap.
    // A region made for another size is clipped to the bitmap. It survives every creation.
    virtual HRESULT STDMETHODCALLTYPE put_RegionOfInterest(IRegionOfInterest* newVal) = 0;

    // Number of foreground pixels of the region.
    // "IBitmapProcess::get_PixelCount: more than 2147483647 pixels."
    virtual HRESULT STDMETHODCALLTYPE get_PixelCount(LONG* hVal) = 0;

    // Exchanges foreground and background.
    virtual HRESULT STDMETHODCALLTYPE Invert() = 0;

    // Keeps the pixels that are set in the other bitmap too.
    virtual HRESULT STDMETHODCALLTYPE AndEquals(IBitmap* Bitmap) = 0;

    // Sets the pixels that are set in the other bitmap.
    virtual HRESULT STDMETHODCALLTYPE OrEquals(IBitmap* Bitmap) = 0;

    // Inverts the pixels that are set in the other bitmap.
    virtual HRESULT STDMETHODCALLTYPE XorEquals(IBitmap* Bitmap) = 0;

    // Clears the pixels that are set in the other bitmap.
    virtual HRESULT STDMETHODCALLTYPE AndNotEquals(IBitmap* Bitmap) = 0;

    // Moves the picture X columns to the right and Y rows down.
    // Vacated pixels are background; what leaves the bitmap is lost.
    virtual HRESULT STDMETHODCALLTYPE ShiftEquals(LONG X, LONG Y) = 0;

    // Erosion with the pixel and its 4 or 8 neighbours, Times times.
    // A pixel stays when all of them are set. Times below 1 changes nothing, here and in the next three methods;
    // Open and Close apply the first step Times times, then the second Times times.
    virtual HRESULT STDMETHODCALLTYPE Erode(ConnectivityType Connectivity, LONG Times) = 0;

    // Dilation with the pixel and its 4 or 8 neighbours, Times times.
    // A pixel is set when any of them is.
    virtual HRESULT STDMETHODCALLTYPE Dilate(ConnectivityType Connectivity, LONG Times) = 0;

    // Opening: erosions, then as many dilations.
    virtual HRESULT STDMETHODCALLTYPE Open(ConnectivityType Connectivity, LONG Times) = 0;

    // Closing: dilations, then as many erosions.
    virtual HRESULT STDMETHODCALLTYPE Close(ConnectivityType Connectivity, LONG Times) = 0;

    // Erosion with a rectangle of pixels.
    // The window of pixel (x, y) has the columns x - (Width - 1) / 2 to x + Width / 2 (integer division), and its
    // rows likewise. The time does not depend on the size.
    //   "IBitmapProcess::ErodeRectangle: width and height must be positive." (the others under their own names)
    virtual HRESULT STDMETHODCALLTYPE ErodeRectangle(LONG Width, LONG Height) = 0;

    // Dilation with a rectangle, reflected: columns x - Width / 2 to x + (Width - 1) / 2, rows likewise.
    virtual HRESULT STDMETHODCALLTYPE DilateRectangle(LONG Width, LONG Height) = 0;

    // Opening with a rectangle: the union of all Width x Height rectangles that fit into the foreground.
    virtual HRESULT STDMETHODCALLTYPE OpenRectangle(LONG Width, LONG Height) = 0;

    // Closing with a rectangle: the dual of the opening.
    virtual HRESULT STDMETHODCALLTYPE CloseRectangle(LONG Width, LONG Height) = 0;

    // Erosion with a disk: a pixel stays when no background pixel centre lies within Radius of its own.
    // The disk has the pixels of IStructuringElement::CreateDisk, and for radii below 1 its centre only.
    //   "IBitmapProcess::ErodeDisk: the radius cannot be negative." (NaN too; the others under their own names)
    virtual HRESULT STDMETHODCALLTYPE ErodeDisk(double Radius) = 0;

    // Dilation with a disk.
    virtual HRESULT STDMETHODCALLTYPE DilateDisk(double Radius) = 0;

    // Opening with a disk: the union of all disks that fit into the foreground.
    virtual HRESULT STDMETHODCALLTYPE OpenDisk(double Radius) = 0;

    // Closing with a disk.
    virtual HRESULT STDMETHODCALLTYPE CloseDisk(double Radius) = 0;

    // Erosion with any structuring element: p stays when p + b is set for all its pixels b.
    // The element may be another component's; its pixels are read once. Duplicates count once.
    //   "IBitmapProcess::ErodeElement: the structuring element is empty." (the others under their own names)
    //   "... the structuring element has too many runs for a bitmap of this size." beyond some seconds of work
    virtual HRESULT STDMETHODCALLTYPE ErodeElement(IStructuringElement* Element) = 0;

    // Dilation with any structuring element: p is set when p - b is set for one of its pixels b.
    virtual HRESULT STDMETHODCALLTYPE DilateElement(IStructuringElement* Element) = 0;

    // Opening with any structuring element.
    virtual HRESULT STDMETHODCALLTYPE OpenElement(IStructuringElement* Element) = 0;

    // Closing with any structuring element.
    virtual HRESULT STDMETHODCALLTYPE CloseElement(IStructuringElement* Element) = 0;

    // Replaces each pixel by the entry of a table for its 3x3 neighbourhood.
    // The table has 512 bytes; any value but 0 sets the pixel. The index is 256 NW + 128 N + 64 NE + 32 W + 16 C +
    // 8 E + 4 SW + 2 S + SE, with 1 for a set pixel. All pixels are replaced at once, Times times or until nothing
    // changes. Passes is the number of times that changed something (Times for a bitmap that goes back and forth).
    // "IBitmapProcess::ApplyTable: too many passes for a bitmap of this size." after some seconds without coming to
    // rest
    virtual HRESULT STDMETHODCALLTYPE ApplyTable(unsigned char* Table, LONG Times, LONG* Passes) = 0;

    // Sets the pixels p for which p + b is set for all b of Hit and clear for all b of Miss (Serra 1982).
    // Either element may be null or empty, but not both: "IBitmapProcess::HitOrMiss: no structuring element."
    // Pixels outside the bitmap fit both.
    virtual HRESULT STDMETHODCALLTYPE HitOrMiss(IStructuringElement* Hit, IStructuringElement* Miss) = 0;

    // The boundary of the foreground.
    // BT_Inner: foreground pixels with a background pixel among their 4 or 8 neighbours. BT_Outer: background
    // pixels with a foreground pixel among them. Other values: E_INVALIDARG.
    virtual HRESULT STDMETHODCALLTYPE Boundary(BoundaryType Side, ConnectivityType Connectivity) = 0;

    // Thins the foreground Times times; components and holes stay.
    // A pixel is simple when its removal changes neither the components of the foreground nor those of the
    // background in its 3x3 neighbourhood (Yokoi, Toriwaki and Fukumura 1975), and an end when it has exactly one
    // neighbour. A pass removes, in turn for the directions north, south, east and west, the simple pixels that are
    // no ends and have background there (Rosenfeld 1975).
    virtual HRESULT STDMETHODCALLTYPE Thin(ConnectivityType Connectivity, LONG Times) = 0;

    // The skeleton: lines one pixel wide, with the components and holes of the foreground.
    // Thin until nothing changes; then the simple pixels that are no ends go one by one in raster order.
    virtual HRESULT STDMETHODCALLTYPE Skeleton(ConnectivityType Connectivity) = 0;

    // Removes the end branches of a skeleton that have at most Length pixels, the shortest first.
    // A branch runs from an end to a junction, a pixel with three neighbours or more, which stays. What has no
    // junction stays whole, and so does the longest line of a component.
    virtual HRESULT STDMETHODCALLTYPE Prune(ConnectivityType Connectivity, LONG Length) = 0;

    // Thickens the foreground Times times without joining components or closing holes.
    // Thins the background; a dividing line as thin as its connectivity allows remains between components.
    virtual HRESULT STDMETHODCALLTYPE Thicken(ConnectivityType Connectivity, LONG Times) = 0;

    // Replaces each component by its convex hull: the pixels whose centres lie in the hull of its pixel centres.
    virtual HRESULT STDMETHODCALLTYPE ConvexHulls(ConnectivityType Connectivity) = 0;

    // Keeps the ultimate points: the regional maxima of the distance to the background.
    // A regional maximum is a connected set of foreground pixels of equal Euclidean distance, none of whose
    // neighbours has a larger one. Without any background: nothing is left.
    virtual HRESULT STDMETHODCALLTYPE UltimatePoints(ConnectivityType Connectivity) = 0;

    // Keeps the components that hold at least one set pixel of the other bitmap.
    virtual HRESULT STDMETHODCALLTYPE Reconstruct(IBitmap* Seeds, ConnectivityType Connectivity) = 0;

    // Fills holes of at most MaximumArea pixels; 0 stands for all.
    // A hole is a component of the background that is not connected to the outside (rule 2). Its area does not
    // count the components that lie in it.
    //   "IBitmapProcess::FillHoles: the area cannot be negative."
    virtual HRESULT STDMETHODCALLTYPE FillHoles(LONG MaximumArea, ConnectivityType Connectivity) = 0;

    // Removes the components that touch the edge of the bitmap.
    virtual HRESULT STDMETHODCALLTYPE ClearBorder(ConnectivityType Connectivity) = 0;

    // Keeps the components of MinimumArea to MaximumArea pixels, both included.
    // (1, 2^31 - 1) keeps all; a range that is empty keeps none.
    virtual HRESULT STDMETHODCALLTYPE KeepArea(LONG MinimumArea, LONG MaximumArea, ConnectivityType Connectivity) = 0;

    // Separates touching blobs along the watersheds of the distance to the background (Meyer 1994, Soille 2003).
    // A part whose largest inscribed circle has the radius r becomes one of its own where every way to a wider part
    // passes a place with a distance below (1 - MinimumShare) r - MinimumDepth. MinimumDepth, in pixels, suppresses
    // the roughness of outlines; MinimumShare, 0 to 1, what grows with the size. Both 0: one part for each regional
    // maximum of the distance. Pixels are flooded from these maxima in order of distance, first in raster order;
    // the lines where floods meet become background.
    //   "IBitmapProcess::Split: the depth cannot be negative." (NaN too)
    //   "IBitmapProcess::Split: the share must lie between 0 and 1."
    virtual HRESULT STDMETHODCALLTYPE Split(double MinimumDepth, double MinimumShare,
        ConnectivityType Connectivity) = 0;

    // A new image of the distances to the background (DT_Float).
    // A foreground pixel has the Euclidean distance between its centre and that of the nearest background pixel of
    // the bitmap, as the nearest float; infinite without background. Background has 0. The region does not count.
    virtual HRESULT STDMETHODCALLTYPE get_DistanceMap(IImageVPA** hVal) = 0;

    // The connected components of the foreground in the region, as an object of their own (IBlobs).
    // Pixels outside the region are background. The blobs do not change when the bitmap does.
    virtual HRESULT STDMETHODCALLTYPE FindBlobs(ConnectivityType Connectivity, IBlobs** hVal) = 0;

    // Decides the pixels whose neighbourhood has contrast by a level of their own (Bernsen 1986).
    // The neighbourhood is the square of 2 Radius + 1 columns and rows around the pixel, clipped to the image; low
    // and high are its smallest and largest grey values. Where high - low >= Contrast, a pixel with the value g is
    // set when g > (low + high) / 2 + Offset, or with Bright = 0 when it is not. All other pixels stay: there a
    // threshold for the whole image, applied before, decides. So the outline of each particle lies half-way between
    // the particle and what surrounds it, be it background or a brighter particle. Integers are exact; of float
    // values (g - low) - (high - g) > 2 Offset is compared, each difference rounded to double. Values that are not
    // finite do not count, and their pixels stay. The image has the bitmap's size; the time does not depend on
    // Radius.
    //   "IBitmapProcess::ThresholdLocally: the radius cannot be negative."
    //   "IBitmapProcess::ThresholdLocally: the contrast cannot be negative." (NaN too)
    //   "IBitmapProcess::ThresholdLocally: the offset is not a number."
    //   "IBitmapProcess::ThresholdLocally: multiband thresholding is not supported." (BI_AllBands with several
    //   bands)
    //   "IBitmapProcess::ThresholdLocally: the image has another size." / "...: no source image."
    virtual HRESULT STDMETHODCALLTYPE ThresholdLocally(IImageVPA* Image, LONG BandIndex, LONG Radius, double Contrast,
        double Offset, LONG Bright) = 0;
};
DEFINE_GUID(IID_IBitmapProcess, 0x467413e9, 0x0f32, 0x4fe5, 0xa3,0xf4, 0xda,0x7a,0x3a,0x33,0xcf,0x7a);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IBitmapProcess, 0x467413e9, 0x0f32, 0x4fe5, 0xa3,0xf4, 0xda,0x7a,0x3a,0x33,0xcf,0x7a)
#endif

// A set of pixels of an image of known size, handed out row by row.
MIDL_INTERFACE("350245b0-5145-4cf4-998f-dfd8d4a5d8a5") IRegionOfInterest : public IUnknown {
    // Width of the image that the region belongs to.
    virtual HRESULT STDMETHODCALLTYPE get_Width(LONG* hVal) = 0;

    // Height of the image that the region belongs to.
    virtual HRESULT STDMETHODCALLTYPE get_Height(LONG* hVal) = 0;

    // The rectangle that holds all pixels of the region.
    // Both ends included; right < left or bottom < top when there are no pixels.
    virtual HRESULT STDMETHODCALLTYPE get_BoundingBox(RECT* hVal) = 0;

    // The runs of a row as the half-open array hBegin..hEnd, from left to right. A run may be empty (stop < start)
    // or reach outside the image: the consumer skips or clips it. Both are null when there are no runs; S_FALSE for
    // a row outside the image. Valid until the next call, creation or release.
    virtual HRESULT STDMETHODCALLTYPE GetRowRuns(LONG Row, SRun** hBegin, SRun** hEnd) = 0;
};
DEFINE_GUID(IID_IRegionOfInterest, 0x350245b0, 0x5145, 0x4cf4, 0x99,0x8f, 0xdf,0xd8,0xd4,0xa5,0xd8,0xa5);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IRegionOfInterest, 0x350245b0, 0x5145, 0x4cf4, 0x99,0x8f, 0xdf,0xd8,0xd4,0xa5,0xd8,0xa5)
#endif

// A rectangle, oriented rectangle or disk: its inside, outside or one-pixel frame.
// Each creation first tests "<Method>: width must be positive." and "<Method>: height must be positive."; these
// failures change nothing. After any other reported failure the size is the new one, the shape has no pixels and
// the box is the old one. Polarity, colour and description survive. A new region is empty: size 0, box (0, 0, -1,
// -1). NaN arguments give a shape without pixels. Circles and oriented rectangles take 8 bytes for each image row
// that they cover, and may cover at most 2^24 rows: "<Method>: the shape covers more than 16777216 rows."
MIDL_INTERFACE("43459e62-5618-470b-968b-3211a82afcce") IShapeRegionOfInterest : public IRegionOfInterest {
    // An upright rectangle, both ends included.
    // The box and the runs are clipped to the image; where the rectangle misses the image, that reverses their
    // ends.
    //   "IShapeRegionOfInterest::CreateRectangle: left cannot be greater than right."
    //   "IShapeRegionOfInterest::CreateRectangle: top cannot be below bottom."
    virtual HRESULT STDMETHODCALLTYPE CreateRectangle(LONG ImageWidth, LONG ImageHeight, LONG lLeft, LONG lTop,
        LONG lRight, LONG lBottom) = 0;

    // A rectangle in any direction, given by its centre, size and angle.
    // The width runs along the direction RectangleOrientation (degrees, from +x towards +y), the height across it.
    virtual HRESULT STDMETHODCALLTYPE CreateOrientedRectangle(LONG ImageWidth, LONG ImageHeight, double RectangleWidth,
        double RectangleHeight, double RectangleOrientation, double RectangleXCenter, double RectangleYCenter) = 0;

    // A rectangle in any direction, given by its centre line and width.
    // It holds the pixel centres inside the rectangle about the centre line; a width below 1 gives the one-pixel
    // line of IBitmap::DrawLine. Each row spans the outermost edges that it meets, searched from the ends of the
    // image row inwards: of a rectangle left or right of the image, each row has one pixel at the near end. It
    // reports as "IShapeRegionOfInterest::CreateOrientedRectangle: ...", including "no rectangle center line." for
    // a centre line without length (or NaN).
    virtual HRESULT STDMETHODCALLTYPE CreateOrientedRectangleFromCenterLine(LONG ImageWidth, LONG ImageHeight,
        double X1, double Y1, double X2, double Y2, double RectangleWidth) = 0;

    // A disk.
    // It holds the pixels whose centres lie at most Radius from the centre. The box is clipped to the image; the
    // runs are not clipped to its columns. A row without a pixel centre has a run with start = stop + 1.
    virtual HRESULT STDMETHODCALLTYPE CreateCircle(LONG ImageWidth, LONG ImageHeight, double XCenter, double YCenter,
        double Radius) = 0;

    // Which side of the shape is the region.
    // Inside: the shape's run in the rows of its box. Outside: what lies left and right of the run, as two runs of
    // which either may be empty, and the other rows in full; the box is the image. Frame: the full run in the first
    // and the last row of the box; in the rows between, its end pixels and all its pixels that the run above or the
    // run below does not cover, as two runs that may overlap.
    virtual HRESULT STDMETHODCALLTYPE get_Polarity(PolarityType* hVal) = 0;

    // Chooses which side of the shape is the region; get_Polarity says what each value means.
    virtual HRESULT STDMETHODCALLTYPE put_Polarity(PolarityType newVal) = 0;
};
DEFINE_GUID(IID_IShapeRegionOfInterest, 0x43459e62, 0x5618, 0x470b, 0x96,0x8b, 0x32,0x11,0xa8,0x2a,0xfc,0xce);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IShapeRegionOfInterest, 0x43459e62, 0x5618, 0x470b, 0x96,0x8b, 0x32,0x11,0xa8,0x2a,0xfc,0xce)
#endif

// An image as it is shown: its display levels in the colours of its colour table (see IDisplayProcess), on a
// surface. Rules for the methods that render:
//  (1) hdcDest is a handle to a device context (HDC) of a display, memory, a metafile or an enhanced metafile, or
//      the address of such a handle; otherwise "IPictureEx::Render: invalid HDC". Its settings are restored
//      afterwards. Off Windows, where there are no device contexts, these methods answer E_NOTIMPL; IPictureMemory
//      draws everywhere.
//  (2) DestX, DestY, DestWidth, DestHeight are logical coordinates of the context; the destination is the device
//      rectangle between (DestX, DestY) and (DestX + DestWidth, DestY + DestHeight). A negative width or height
//      mirrors the picture. A destination without area: S_FALSE, nothing is drawn and nothing changes. A metafile
//      keeps its mapping mode; in all other contexts drawing uses device coordinates, without a transformation.
//  (3) Both maps and DestRect are set before anything is drawn, in device coordinates, and keep their values when
//      the drawing fails. Pixel centres lie at whole numbers in the image and pixel edges at whole numbers on the
//      surface.
//  (4) Parts of the destination that the picture leaves free are filled with Surround.
//  (5) Pixels are chosen (nearest neighbour) where the picture and the context's bitmap both have 8 bits per pixel,
//      otherwise averaged and interpolated by the system (HALFTONE).
//  (6) While a client is connected to IPictureExEvents, a display is drawn on through a bitmap in memory, so that
//      the picture and what the client draws over it appear together; failure:
//      "IPictureEx::Render: unable to BitBlt". Printers, and displays for which the system makes no such bitmap,
//      are drawn on directly.
//  (7) "IPictureEx::Render: unable to retrieve bitmap information." (RenderBlt and RenderStretch under their own
//      names), then "IPictureEx::Render: No image." for an image without pixels. S_FALSE when the system does not
//      draw the bitmap.
MIDL_INTERFACE("fa5a4954-fb40-44c5-9c5b-60410843d9ce") IPictureEx : public IUnknown {
    // The map from the surface to pixels, the inverse of PixelToDestCoords.
    virtual HRESULT STDMETHODCALLTYPE get_DestToPixelCoords(TCoordinateMap* hVal) = 0;

    // The map from pixels to the surface, as the last rendering left it; identity before.
    // x' = OrgX + A11 x + A12 y, y' = OrgY + A21 x + A22 y. When the source rectangle (sx, sy, sw, sh) is shown on
    // the rectangle (fx, fy, fw, fh), A11 = fw / sw and OrgX = fx - (sx - 0.5) A11; y likewise.
    virtual HRESULT STDMETHODCALLTYPE get_PixelToDestCoords(TCoordinateMap* hVal) = 0;

    // Width of the image in pixels, 0 without one.
    virtual HRESULT STDMETHODCALLTYPE get_Width(LONG* hVal) = 0;

    // Height of the image in pixels, 0 without one.
    virtual HRESULT STDMETHODCALLTYPE get_Height(LONG* hVal) = 0;

    // The device rectangle that the picture filled when it was last rendered, without the surround.
    // Right and bottom are exclusive, and lie before left and top where the picture is mirrored. Zeros before the
    // first rendering.
    virtual HRESULT STDMETHODCALLTYPE get_DestRect(RECT* hVal) = 0;

    // Colour around the picture, 0x00BBGGRR, initially 0 (black). The high byte is kept but not used.
    virtual HRESULT STDMETHODCALLTYPE get_Surround(OLE_COLOR* hVal) = 0;

    // Colour around the picture, 0x00BBGGRR, initially 0 (black). The high byte is kept but not used.
    virtual HRESULT STDMETHODCALLTYPE put_Surround(OLE_COLOR newVal) = 0;

    // Draws the zoomed part of the image as large as possible, centred in the destination.
    // The zoomed part (see IPictureExZoom; without zoom the whole image) keeps its aspect ratio. If the destination
    // is relatively taller or wider than that part, the part first grows by rows or columns on both sides, as far
    // as the image reaches. The shorter side is rounded half up, with equal margins on both sides.
    virtual HRESULT STDMETHODCALLTYPE Render(void* hdcDest, LONG DestX, LONG DestY, LONG DestWidth,
        LONG DestHeight) = 0;

    // Draws like Render, but the picture begins at (DestX, DestY).
    // Texts of Render.
    virtual HRESULT STDMETHODCALLTYPE RenderTopLeft(void* hdcDest, LONG DestX, LONG DestY, LONG DestWidth,
        LONG DestHeight) = 0;

    // Draws the image with one device pixel for each of its pixels, whatever the zoom.
    // (SourceX, SourceY) lies in the first column and row of the destination. Parts of the destination beyond the
    // image are surround. A destination that shows nothing of the image is all surround: S_FALSE, and the maps and
    // DestRect stay. Texts of Render except for rule 7, and
    //   "IPictureEx::RenderBlt: unable to retrieve bitmap information."
    virtual HRESULT STDMETHODCALLTYPE RenderBlt(void* hdcDest, LONG DestX, LONG DestY, LONG DestWidth, LONG DestHeight,
        LONG SourceX, LONG SourceY) = 0;

    // Draws a rectangle of the image so that it fills the destination, whatever the zoom.
    // The aspect ratio is that of the destination. Texts of Render except for rule 7, and
    //   "IPictureEx::RenderStretch: unable to retrieve bitmap information."
    //   "IPictureEx::RenderStretch: the source rectangle must lie on the image." (also when it is empty)
    virtual HRESULT STDMETHODCALLTYPE RenderStretch(void* hdcDest, LONG DestX, LONG DestY, LONG DestWidth,
        LONG DestHeight, LONG SourceX, LONG SourceY, LONG SourceWidth, LONG SourceHeight) = 0;

    // A new bitmap (HBITMAP) of the whole image in the format of a device context.
    // It has one pixel for each pixel of the image, in the colours shown. Rule 1 does not apply to the context:
    // null stands for the screen. The caller deletes the bitmap (DeleteObject); *hVal is null after a failure. Off
    // Windows: E_NOTIMPL.
    // "IPictureEx::CreateHBITMAP: No image."
    virtual HRESULT STDMETHODCALLTYPE CreateHBITMAP(void* hdc, void** hVal) = 0;

    // A new bitmap (HBITMAP) of the whole image, with its pixels in memory.
    // Like CreateHBITMAP, but bottom-up with 8 bits and the colour table, or with 32 bits where three bands are
    // shown. *Bits is the address of its pixels, which live as long as the bitmap.
    // "IPictureEx::CreateDIBSection: No image."
    virtual HRESULT STDMETHODCALLTYPE CreateDIBSection(void** Bits, void** hVal) = 0;

    // Uses the client's memory as the image: one band of 8 or 16 bits per pixel.
    // Layout, rules and texts are those of IImageVPAExPlus::AttachBuffer with DT_BYTE or DT_WORD, without clearing.
    //   "IPictureEx::AttachBuffer: the picture must have 8 or 16 bits per pixel."
    virtual HRESULT STDMETHODCALLTYPE AttachBuffer(void* pBuffer, LONG Width, LONG Height, LONG BitsPerPixel) = 0;

    // What lies under a device pixel: point of the image, value and colour.
    // For showing values at the pointer. X and Y are the point of the image under the centre of the device pixel,
    // DestToPixelCoords of (DestX + 0.5, DestY + 0.5). Value is that of the nearest pixel in the band to display
    // (in band 0 when all are shown), Color the colour that shows it, 0x00BBGGRR. When the nearest pixel is not on
    // the image: S_FALSE, Value and Color are 0, and X and Y are set all the same.
    virtual HRESULT STDMETHODCALLTYPE GetPixelInfo(LONG DestX, LONG DestY, double* X, double* Y, double* Value,
        OLE_COLOR* Color) = 0;
};
DEFINE_GUID(IID_IPictureEx, 0xfa5a4954, 0xfb40, 0x44c5, 0x9c,0x5b, 0x60,0x41,0x08,0x43,0xd9,0xce);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPictureEx, 0xfa5a4954, 0xfb40, 0x44c5, 0x9c,0x5b, 0x60,0x41,0x08,0x43,0xd9,0xce)
#endif

// Memory to draw on.
typedef struct SPictureMemory {
    // the first pixel of the top row; 0x00RRGGBB
    unsigned int* m_pPixels;
    LONG m_lWidth;
    LONG m_lHeight;
    // in pixels, from a row to the one below; may be negative
    LONG m_lStride;
    // a RasterScaling
    LONG m_lScaling;
} SPictureMemory;

// The rendering methods of IPictureEx for the client's memory, with the same pixels on every system.
// Rectangles, maps, DestRect, results and texts are those of the IPictureEx method of the same name, except for
// rule 1 and failures of the system. Coordinates are pixels of the memory, and nothing is drawn outside it. Pixels
// that are not drawn stay; those that are drawn have a high byte of 0. Clients connected to IPictureExEvents are
// not called: the caller draws overlays into the memory itself. Every channel of a smooth pixel is
// (sum of wy wx p + 2^23) / 2^24, rounded down, with integer weights in units of 2^-12 along either axis; for the
// nearest pixel, pixel i of n shows source pixel floor((2 i + 1) s / (2 n)) of s. At the size of the source both
// are the same. Tested in this order, before anything else:
//   E_POINTER for a null Memory or m_pPixels
//   "IPictureMemory: the memory has no pixels." (m_lWidth or m_lHeight below 1)
//   "IPictureMemory: the stride is shorter than a row."
//   "IPictureMemory: no such scaling."
MIDL_INTERFACE("bed32293-5360-4620-9c09-efc3d5923cc4") IPictureMemory : public IUnknown {
    // IPictureEx::Render on the client's memory.
    virtual HRESULT STDMETHODCALLTYPE RenderToMemory(SPictureMemory* Memory, LONG DestX, LONG DestY, LONG DestWidth,
        LONG DestHeight) = 0;

    // IPictureEx::RenderTopLeft on the client's memory.
    virtual HRESULT STDMETHODCALLTYPE RenderTopLeftToMemory(SPictureMemory* Memory, LONG DestX, LONG DestY,
        LONG DestWidth, LONG DestHeight) = 0;

    // IPictureEx::RenderBlt on the client's memory.
    virtual HRESULT STDMETHODCALLTYPE RenderBltToMemory(SPictureMemory* Memory, LONG DestX, LONG DestY, LONG DestWidth,
        LONG DestHeight, LONG SourceX, LONG SourceY) = 0;

    // IPictureEx::RenderStretch on the client's memory.
    virtual HRESULT STDMETHODCALLTYPE RenderStretchToMemory(SPictureMemory* Memory, LONG DestX, LONG DestY,
        LONG DestWidth, LONG DestHeight, LONG SourceX, LONG SourceY, LONG SourceWidth, LONG SourceHeight) = 0;
};
DEFINE_GUID(IID_IPictureMemory, 0xbed32293, 0x5360, 0x4620, 0x9c,0x09, 0xef,0xc3,0xd5,0x92,0x3c,0xc4);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPictureMemory, 0xbed32293, 0x5360, 0x4620, 0x9c,0x09, 0xef,0xc3,0xd5,0x92,0x3c,0xc4)
#endif

// A picture with zoom and pan: a magnification, and the point of the image that appears in the middle. A new image
// size resets both. Rules:
//  (1) Render and RenderTopLeft start from the columns trunc(ZoomCenterX -+ Width / (2 z) + 0.5), both included,
//      where z is the larger of the zoom factor and 1, and from the rows likewise. A part that sticks out is moved
//      into the image. A factor of 1.0 shows the whole image.
//  (2) Points on the surface are mapped by DestToPixelCoords, so they refer to the last rendering.
//  (3) All methods but the three puts return S_OK. They change the factor and the centre as the puts do; a value
//      that a put would refuse leaves the old one, without a text, and the method goes on. PanLeft at the left edge
//      of the image does nothing.
MIDL_INTERFACE("814cd6d8-6d66-4e3e-8455-a534a65f1b2e") IPictureExZoom : public IPictureEx {
    // The magnification; 1 shows the whole image.
    // Stored unchanged. "IPictureZoom: zoom factor must be positive." (0, below, NaN)
    virtual HRESULT STDMETHODCALLTYPE get_ZoomFactor(double* hVal) = 0;

    // The magnification; 1 shows the whole image.
    // Stored unchanged. "IPictureZoom: zoom factor must be positive." (0, below, NaN)
    virtual HRESULT STDMETHODCALLTYPE put_ZoomFactor(double newVal) = 0;

    // Column of the image that appears in the middle.
    // Stored unchanged if 0 < trunc(newVal + 0.5) < Width, which excludes the first column:
    // "IPictureZoom::put_ZoomCenterX: x zoom center must be on the image."
    virtual HRESULT STDMETHODCALLTYPE get_ZoomCenterX(double* hVal) = 0;

    // Column of the image that appears in the middle.
    // Stored unchanged if 0 < trunc(newVal + 0.5) < Width, which excludes the first column:
    // "IPictureZoom::put_ZoomCenterX: x zoom center must be on the image."
    virtual HRESULT STDMETHODCALLTYPE put_ZoomCenterX(double newVal) = 0;

    // Row of the image that appears in the middle.
    // Stored unchanged if 0 < trunc(newVal + 0.5) < Height, which excludes the first row:
    // "IPictureZoom::put_ZoomCenterY: y zoom center must be on the image."
    virtual HRESULT STDMETHODCALLTYPE get_ZoomCenterY(double* hVal) = 0;

    // Row of the image that appears in the middle.
    // Stored unchanged if 0 < trunc(newVal + 0.5) < Height, which excludes the first row:
    // "IPictureZoom::put_ZoomCenterY: y zoom center must be on the image."
    virtual HRESULT STDMETHODCALLTYPE put_ZoomCenterY(double newVal) = 0;

    // Shows the whole image.
    // The factor becomes 1 and the centre Width / 2 and Height / 2 in integer division, even where the puts would
    // refuse it.
    virtual HRESULT STDMETHODCALLTYPE ResetZoom() = 0;

    // Centres a point of the surface and zooms in, like ZoomIn.
    virtual HRESULT STDMETHODCALLTYPE ZoomInFromPoint(LONG DestX, LONG DestY) = 0;

    // Centres a point of the surface and zooms out, like ZoomOut.
    virtual HRESULT STDMETHODCALLTYPE ZoomOutFromPoint(LONG DestX, LONG DestY) = 0;

    // Centres a rectangle of the surface and takes the zoom factor from its size.
    // In pixels the rectangle reaches from (x1, y1) to (x2, y2). Its middle becomes the centre, and the smaller of
    // (x2 - x1 + 1) / Width and (y2 - y1 + 1) / Height becomes the factor: the share of the image that is selected,
    // not its reciprocal. A rectangle drawn to the left or upwards does not change the factor.
    virtual HRESULT STDMETHODCALLTYPE ZoomFromRectangle(LONG DestX, LONG DestY, LONG DestWidth, LONG DestHeight) = 0;

    // Multiplies the zoom factor by 1.25, without limit.
    virtual HRESULT STDMETHODCALLTYPE ZoomIn() = 0;

    // Multiplies the zoom factor by 0.8, down to 1.
    virtual HRESULT STDMETHODCALLTYPE ZoomOut() = 0;

    // Moves the view to the left, right, top or bottom by one device pixel.
    // By one image pixel where that is more. The move starts from the centre or from the middle of DestRect,
    // whichever lies further to that side.
    virtual HRESULT STDMETHODCALLTYPE PanLeft() = 0;

    // Moves the view to the left, right, top or bottom by one device pixel.
    // By one image pixel where that is more. The move starts from the centre or from the middle of DestRect,
    // whichever lies further to that side.
    virtual HRESULT STDMETHODCALLTYPE PanRight() = 0;

    // Moves the view to the left, right, top or bottom by one device pixel.
    // By one image pixel where that is more. The move starts from the centre or from the middle of DestRect,
    // whichever lies further to that side.
    virtual HRESULT STDMETHODCALLTYPE ScrollUp() = 0;

    // Moves the view to the left, right, top or bottom by one device pixel.
    // By one image pixel where that is more. The move starts from the centre or from the middle of DestRect,
    // whichever lies further to that side.
    virtual HRESULT STDMETHODCALLTYPE ScrollDown() = 0;

    // Moves the image as if a pointer dragged it from the first point to the second.
    virtual HRESULT STDMETHODCALLTYPE PanScrollFromPoints(LONG FirstDestX, LONG FirstDestY, LONG SecondDestX,
        LONG SecondDestY) = 0;
};
DEFINE_GUID(IID_IPictureExZoom, 0x814cd6d8, 0x6d66, 0x4e3e, 0x84,0x55, 0xa5,0x34,0xa6,0x5f,0x1b,0x2e);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPictureExZoom, 0x814cd6d8, 0x6d66, 0x4e3e, 0x84,0x55, 0xa5,0x34,0xa6,0x5f,0x1b,0x2e)
#endif

// Size and zoom for scripts: IPictureExZoom's properties of the same names, with its rules and texts. Like
// everything for scripts it is a dispatch interface only; compiled clients use IPictureExZoom.
MIDL_INTERFACE("9bff7f4e-10dc-47a1-989c-b53cba2fba6b") IPictureExZoomDisp : public IDispatch {
};
DEFINE_GUID(DIID_IPictureExZoomDisp, 0x9bff7f4e, 0x10dc, 0x47a1, 0x98,0x9c, 0xb5,0x3c,0xba,0x2f,0xba,0x6b);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPictureExZoomDisp, 0x9bff7f4e, 0x10dc, 0x47a1, 0x98,0x9c, 0xb5,0x3c,0xba,0x2f,0xba,0x6b)
#endif

// Events that a picture raises for connected clients.
MIDL_INTERFACE("13264fd2-890c-4d65-a9c1-e6a23afe1887") IPictureExEvents : public IUnknown {
    // The picture has been drawn: the moment to draw overlays.
    // Its maps and DestRect are those of this drawing, in the coordinates of hdcDest. Overlays are drawn on
    // hdcDest, a device context (HDC): of memory where a display is drawn through memory, otherwise the client's
    // own. SourceType tells which kind the client gave. The result is ignored.
    virtual HRESULT STDMETHODCALLTYPE OnRender(IPictureEx* Picture, void* hdcDest, RenderSourceType SourceType) = 0;
};
DEFINE_GUID(IID_IPictureExEvents, 0x13264fd2, 0x890c, 0x4d65, 0xa9,0xc1, 0xe6,0xa2,0x3a,0xfe,0x18,0x87);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPictureExEvents, 0x13264fd2, 0x890c, 0x4d65, 0xa9,0xc1, 0xe6,0xa2,0x3a,0xfe,0x18,0x87)
#endif

// Something that can be drawn over an image.
MIDL_INTERFACE("44f6c88f-d9b8-4f31-bd5b-0856e14c42ce") IGraphicOverlay : public IUnknown {
    // Draws into the device context (HDC) through the view of the picture.
    // A shape region fills, in its colour, each run that GetRowRuns returns for the rows of its shape (whatever its
    // polarity): the rectangle from (m_lStart - 0.5, row - 0.5) to (m_lStop + 0.5, row + 0.5) of the image, its
    // corners mapped by PixelToDestCoords and rounded half up, so that neighbours join without gap or overlap.
    // E_FAIL when the picture fails. Off Windows, where there are no device contexts: E_NOTIMPL.
    virtual HRESULT STDMETHODCALLTYPE Render(IPictureEx* Picture, void* hdcDest) = 0;

    // Colour of the overlay, 0x00BBGGRR, initially 0x0000FF00 (green).
    virtual HRESULT STDMETHODCALLTYPE get_Color(OLE_COLOR* hVal) = 0;

    // Colour of the overlay, 0x00BBGGRR, initially 0x0000FF00 (green).
    virtual HRESULT STDMETHODCALLTYPE put_Color(OLE_COLOR newVal) = 0;

    // Any text that the client keeps with the overlay; null when none is set. The caller frees the string.
    virtual HRESULT STDMETHODCALLTYPE get_Description(BSTR* hVal) = 0;

    // Any text that the client keeps with the overlay; null when none is set. The caller frees the string.
    virtual HRESULT STDMETHODCALLTYPE put_Description(BSTR newVal) = 0;
};
DEFINE_GUID(IID_IGraphicOverlay, 0x44f6c88f, 0xd9b8, 0x4f31, 0xbd,0x5b, 0x08,0x56,0xe1,0x4c,0x42,0xce);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IGraphicOverlay, 0x44f6c88f, 0xd9b8, 0x4f31, 0xbd,0x5b, 0x08,0x56,0xe1,0x4c,0x42,0xce)
#endif

// What is measured: a band, a region of interest and a grey interval (the luminance range).
MIDL_INTERFACE("b1f2d7fc-2986-467e-9a0e-82189c1ac2ba") IImageProcessBase : public IUnknown {
    // The band that is processed: an index, or BI_AllBands.
    // Each creation sets it: 0 for an image of one band, BI_AllBands for several. Putting it sets DisplayDirty.
    // "IImageProcess::put_BandToProcess: invalid band to process"
    virtual HRESULT STDMETHODCALLTYPE get_BandToProcess(LONG* hVal) = 0;

    // The band that is processed: an index, or BI_AllBands.
    // Each creation sets it: 0 for an image of one band, BI_AllBands for several. Putting it sets DisplayDirty.
    // "IImageProcess::put_BandToProcess: invalid band to process"
    virtual HRESULT STDMETHODCALLTYPE put_BandToProcess(LONG newVal) = 0;

    // The region of interest, as a new reference; null stands for the whole image.
    virtual HRESULT STDMETHODCALLTYPE get_RegionOfInterest(IRegionOfInterest** hVal) = 0;

    // Sets the region of interest; null stands for the whole image.
    // A region made for another size is clipped to the image.
    virtual HRESULT STDMETHODCALLTYPE put_RegionOfInterest(IRegionOfInterest* newVal) = 0;

    // The luminance range: the grey values that are counted, and to which results are clamped.
    // Initially the full range of the pixel type. For float images that is all finite floats, so nothing is
    // clamped: put or snap a range before asking a float image for a histogram.
    virtual HRESULT STDMETHODCALLTYPE GetLuminanceRange(double* Lower, double* Upper) = 0;

    // Number of bins of the histogram and of entries of the table.
    // Always 256 for 8-bit images. For other types initially 256 and settable: the number of equal intervals into
    // which the histogram divides the luminance range. When a 16- or 32-bit range holds at least two values and no
    // more than this number, the histogram has one bin for each value instead.
    virtual HRESULT STDMETHODCALLTYPE get_NumberOfBins(LONG* hVal) = 0;

    // A new bitmap of the pixels between two levels, or of those outside them.
    // It has the image's size. Lower is clamped to the type's range and rounded up, Upper clamped and rounded down
    // (float images: both as they are). A pixel of the region is set when Lower <= p <= Upper, or with bInside = 0
    // when p < Lower or p > Upper; a NaN pixel is never set. Bits outside the region are clear.
    //   "IImageProcess::Threshold: multiband thresholding is not supported."
    //   "IImageProcess::Threshold: Lower cannot be larger than Upper." (also when a bound is NaN)
    virtual HRESULT STDMETHODCALLTYPE Threshold(double Lower, double Upper, LONG bInside, IBitmap** hVal) = 0;

    // A new histogram of the region in the bands to process.
    // 8-bit images: 256 bins over [0, 255], without the pixels outside the luminance range. Other types:
    // NumberOfBins over the luminance range [Lower, Upper]; a pixel counts in bin
    // floor((p - Lower) n / (Upper - Lower)), p = Upper in the last. Pixels outside the range and NaN pixels are
    // left out, and all pixels when Lower > Upper. A count saturates at 2^31 - 1.
    virtual HRESULT STDMETHODCALLTYPE get_Histogram(IHistogram** hVal) = 0;

    // Count, centroid, average and standard deviation of the pixels of the region.
    // The standard deviation is that over N. The centroid is the mean position weighted by the grey value and needs
    // both flags; 0 where not computed. Sums are exact for integer pixels and in double for float pixels. A NaN
    // pixel makes the centroid, the average and the standard deviation NaN. An infinite pixel makes the centroid
    // and the standard deviation NaN and the average infinite (NaN where both signs occur).
    // "IImageProcessBase::get_GrayMeasurements: multiband measurement is not supported."
    virtual HRESULT STDMETHODCALLTYPE get_GrayMeasurements(GrayExtractMeasurementType Desired,
        SGrayMeasurements* Measure) = 0;
};
DEFINE_GUID(IID_IImageProcessBase, 0xb1f2d7fc, 0x2986, 0x467e, 0x9a,0x0e, 0x82,0x18,0x9c,0x1a,0xc2,0xba);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageProcessBase, 0xb1f2d7fc, 0x2986, 0x467e, 0x9a,0x0e, 0x82,0x18,0x9c,0x1a,0xc2,0xba)
#endif

// Point operations, operations with a second image (Source), and neighbourhood filters.
// Methods with a Source write this image from a source of the same pixel type, unless stated otherwise; region,
// band and luminance range are those of this image. Both images must have the same number of bands to process.
// "IImageProcess::<Method>: data type mismatch." / "... mismatch in the number of bands to process." A source
// without pixels: "IImageProcess::<Method>: no source image."
MIDL_INTERFACE("8421327c-dc10-459f-b986-f9f9f9af5fa1") IImageProcess : public IImageProcessBase {
    // Sets the number of bins, at least 2; 8-bit images have 256.
    // Any number is accepted, but making a histogram or a table of more than 2^24 gives E_FAIL, as without memory.
    // "IImageProcess::put_NumberOfBins: number of bins cannot be changed from 256 for byte images."
    // "IImageProcess::put_NumberOfBins: there must be more than one bin."
    virtual HRESULT STDMETHODCALLTYPE put_NumberOfBins(LONG newVal) = 0;

    // Sets the luminance range, converted to the pixel type.
    // Truncates toward zero and keeps the low-order bits, without a check (12.9 becomes 12; for bytes 256 becomes
    // 0). NaN, infinities and values of 2^63 or more give 0. Float images take the nearest float. Lower may exceed
    // Upper; clamping to the range tests Lower first.
    virtual HRESULT STDMETHODCALLTYPE PutLuminanceRange(double Lower, double Upper) = 0;

    // Sets the luminance range to what the pixels of the region span.
    // That is the smallest and the largest value, without NaN, or, where a trim is not 0, the limit that
    // AutoThresholdTrim finds, truncated (not for float images). RoundOut != 0 restores the full range of 8-bit
    // images and has no effect on others. S_FALSE for a region without pixels. Texts of
    // IHistogram::AutoThresholdTrim.
    virtual HRESULT STDMETHODCALLTYPE SnapLuminanceRange(double TrimLower, double TrimUpper, LONG RoundOut) = 0;

    // Not built yet: E_NOTIMPL.
    virtual HRESULT STDMETHODCALLTYPE get_LocalMaxima(IBitmap** hVal) = 0;

    // Not built yet: E_NOTIMPL.
    virtual HRESULT STDMETHODCALLTYPE get_LocalMinima(IBitmap** hVal) = 0;

    // An entry of the look-up table that LUT applies.
    // The table has NumberOfBins pixel values (256 for bytes). A pixel p within the luminance range becomes the
    // entry of the bin in which get_Histogram counts it; other pixels, and NaN, stay. For bytes that is entry p,
    // whatever the luminance range. With as many bins as the range has values, a 16-bit image is mapped value by
    // value. The table initially holds the locations of the bins (0 to 255 for bytes); changing the number of bins
    // restores that.
    // "IImageProcess::get_Table: Entry is out of range."
    virtual HRESULT STDMETHODCALLTYPE get_Table(LONG Entry, double* hVal) = 0;

    // Sets an entry of the look-up table, converted to the pixel type (rule 6).
    // "IImageProcess::put_Table: Entry is out of range."
    virtual HRESULT STDMETHODCALLTYPE put_Table(LONG Entry, double newVal) = 0;

    // Fills the look-up table so that LUT spreads the levels evenly.
    // It uses the histogram over the luminance range: entry i = Lower + (Upper - Lower) C[i] / T, or with the
    // square root of C[i] / T for ET_UpperTriangular, where C are the cumulative counts and T is their total. Other
    // types change nothing.
    // "IImageProcess::EqualizeTable: empty histogram"
    virtual HRESULT STDMETHODCALLTYPE EqualizeTable(EqualizationType Type) = 0;

    // Replaces each pixel within the luminance range by its entry in the look-up table, see get_Table.
    virtual HRESULT STDMETHODCALLTYPE LUT() = 0;

    // Inverts the grey values: p becomes Upper - p + Lower, clamped to the luminance range.
    virtual HRESULT STDMETHODCALLTYPE Invert() = 0;

    // Not built yet: E_NOTIMPL.
    virtual HRESULT STDMETHODCALLTYPE LocalBackgroundCorrect() = 0;

    // Sets the pixels to a number, converted to the pixel type (rule 6).
    virtual HRESULT STDMETHODCALLTYPE ScalarEquals(double Value) = 0;

    // Divides the pixels by a number, clamped to the type and rounded.
    // When ln(Value) / ln(2) is a whole number k, integer pixels are shifted right by k, or by k modulo 32 for a
    // negative k (so 0.5 gives p >> 31); values without a logarithm (negative, NaN) divide. Float images always
    // divide.
    // "IImageProcess::ScalarDivideEquals: cannot divide by zero."
    virtual HRESULT STDMETHODCALLTYPE ScalarDivideEquals(double Value) = 0;

    // Adds a number to the pixels, clamped to the luminance range.
    // Sums within the range are rounded, except in float images. NaN gives Lower.
    virtual HRESULT STDMETHODCALLTYPE ScalarPlusEquals(double Value) = 0;

    // Sets the pixels to those of a source of another type: this = cast(Source).
    // The cast keeps the low-order bits of integers and truncates floats toward zero first (NaN, infinities and
    // beyond 2^63: 0). Takes the four types of OrlixImage: "IImageProcess::CastEquals: unsupported DataType."
    virtual HRESULT STDMETHODCALLTYPE CastEquals(IImageVPA* Source, LONG SourceBandToProcess) = 0;

    // Adds the pixels of a source of any type: this += cast(Source), see CastEquals.
    // The sum follows the pixel type's own arithmetic. "IImageProcess::PlusEquals: unsupported DataType."
    virtual HRESULT STDMETHODCALLTYPE PlusEquals(IImageVPA* Source, LONG SourceBandToProcess) = 0;

    // Neighbourhood filters: the following eight methods. Pixel (x, y) of the region, in each band to process, is
    // computed from the source around (x, y), which is E among its neighbours:
    //     A B C
    //     D E F
    //     G H I
    //   Border: the source is read through its table (IImageVPA::VPA). Images of this library mirror their pixels
    //     there, without repeating the edge. Pixels whose neighbourhood leaves the table (indices
    //     -200 .. size + 199) stay as they are.
    //   Source: of any size. If it shares memory with this image, above all when it is this image, the result is
    //     that of a copy.
    //   Clamp: results below Lower of this image's luminance range become Lower, others above Upper become Upper.
    //   Failures leave all pixels as they were: "IImageProcess::<Method>: data type mismatch." and
    //     "IImageProcess::<Method>: mismatch in the number of bands to process."; a band that the source does not
    //     have fails as the source reports it.
    //   Rounding of the five linear filters: 8- and 16-bit images compute with integers and truncate the quotient
    //     toward zero. 32-bit images compute in double, where the sums are exact, and take floor(v + 0.5) of the
    //     quotient. Float images compute in single precision, columns before rows and opposite neighbours first;
    //     sharpening takes E + (4 E - (B + D + F + H)) / 2 and E + (4 E - (B + D + F + H)), so that a flat image
    //     comes out unchanged (Laplacian: 0). Sums beyond the largest float are infinite. NaN among the weighted
    //     pixels, and infinities that cancel, give a quiet NaN, which is not clamped.

    // Magnitude of the gradient: sqrt(gx^2 + gy^2) of the Sobel operator.
    // gx = (C + 2 F + I) - (A + 2 D + G), gy = (G + 2 H + I) - (A + 2 B + C), clamped to the luminance range.
    //   8 bits: the root comes from tables of the low 16 bits v of the sum, so sums of 65536 and more wrap
    //     (gx = 256, gy = 0 gives 0). v below 256: the root of v; below 4096: that of the middle of a bucket of 16
    //     (16 floor(v / 16) + 8); else that of a bucket of 256 (256 floor(v / 256) + 128). Rounded to nearest; 255
    //     from 65280 on.
    //   16 bits: the same tables for sums below 65536, buckets of 65536 (+ 32768) below 2^24 and of 2^24 (+ 2^23)
    //     from there. They are coarse where a table begins (magnitudes from 256 to 362 all give 314, from 4096 to
    //     5792 all give 5017). 65535 from sums of 2^32 on, without a wrap.
    //   32 bits: floor(sqrt + 0.5) in double. Float: single precision; gradients beyond 1.8e19 are infinite; NaN,
    //     and infinities that cancel, give a quiet NaN, which is not clamped.
    virtual HRESULT STDMETHODCALLTYPE Sobel(IImageVPA* Source, LONG SourceBandToProcess) = 0;

    // Laplace operator on nine points: ((A + C + G + I) + 4 (B + D + F + H) - 20 E) / 6.
    // Its leading error is the same in all directions.
    virtual HRESULT STDMETHODCALLTYPE Laplacian(IImageVPA* Source, LONG SourceBandToProcess) = 0;

    // Sharpens: (6 E - (B + D + F + H)) / 2, half the strength of SharpenMedium.
    virtual HRESULT STDMETHODCALLTYPE SharpenLow(IImageVPA* Source, LONG SourceBandToProcess) = 0;

    // Sharpens: 5 E - (B + D + F + H).
    virtual HRESULT STDMETHODCALLTYPE SharpenMedium(IImageVPA* Source, LONG SourceBandToProcess) = 0;

    // Smooths with weights 1 2 1 along both axes, over 16: standard deviation sqrt(1/2) pixel.
    virtual HRESULT STDMETHODCALLTYPE Gaussian3x3(IImageVPA* Source, LONG SourceBandToProcess) = 0;

    // Smooths with weights 1 4 6 4 1 along both axes, over 256: standard deviation 1 pixel.
    virtual HRESULT STDMETHODCALLTYPE Gaussian5x5(IImageVPA* Source, LONG SourceBandToProcess) = 0;

    // Moves each pixel to the nearer of the extremes around it (Kramer and Bruckner 1975).
    // In the square of side 2 HalfSize + 1 around p = E, mx is the largest of Lower and the pixels, mn the smallest
    // of Upper and the pixels; p becomes mx when p - mn >= mx - p, else mn. A negative HalfSize makes the square
    // empty (mx = Lower, mn = Upper). The time hardly depends on HalfSize (van Herk 1992); beyond 200, pixels near
    // the borders stay as they are. Float: differences are rounded to single precision; NaN pixels and NaN limits
    // are left out of mx and mn; a NaN pixel stays a quiet NaN; zeros lose their sign.
    virtual HRESULT STDMETHODCALLTYPE ExtremumSharpening(LONG HalfSize, IImageVPA* Source,
        LONG SourceBandToProcess) = 0;

    // Median of the nine pixels A..I, the fifth smallest; not clamped.
    // Float: NaN sorts beyond the infinity of its sign and -0 before 0, so with fewer than five NaN of one sign the
    // median is a number.
    virtual HRESULT STDMETHODCALLTYPE Median3x3(IImageVPA* Source, LONG SourceBandToProcess) = 0;
};
DEFINE_GUID(IID_IImageProcess, 0x8421327c, 0xdc10, 0x459f, 0xb9,0x86, 0xf9,0xf9,0xf9,0xaf,0x5f,0xa1);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageProcess, 0x8421327c, 0xdc10, 0x459f, 0xb9,0x86, 0xf9,0xf9,0xf9,0xaf,0x5f,0xa1)
#endif

// Fits of surfaces z = f(x, y) to the grey values of the region, and corrections that flatten the image.
// x is the column and y the row in this image, neither centred nor scaled.
//
// get_PlanarFit, get_BiquadraticFit, get_BicubicFit: least squares. m_dAverage is the mean of the pixels used, the
// other fields are the coefficients; m_lSize is not written. For integer pixels all sums of pixels are exact, and
// the normal equations are solved with twice the digits of double: coefficients are rounded once, at the end, and
// exact data with whole coefficients give exactly these. For float pixels sums are in double.
//   A region without pixels: S_FALSE, and the record stays as it was.
//   Fewer pixels than coefficients: of the surfaces that fit best, the one with the least sum of squared
//     coefficients in x and y, computed without rounding and rounded once.
//   As many pixels or more that do not determine the surface (one row, a line): of the surfaces that fit best, the
//     one with the least sum of squared coefficients in u = (2x - left - right) / w and v = (2y - top - bottom) /
//     h. left..right and top..bottom are the columns and rows of the region, and w and h the powers of two at or
//     above right - left and bottom - top, at least 1. So the plane of one row has no slope in y. Singular values
//     of the normal matrix in u and v count as zero at or below 1e-12 of the largest.
//   "IOrlixImageProcess::get_PlanarFit: multiband measurement is not supported."
//   "IOrlixImageProcess::get_PlanarFit: not all pixels are finite." (float images)
//   Likewise get_BiquadraticFit and get_BicubicFit. A failure leaves the record as it was.
//
// CorrectPlanar, CorrectBiquadratic, CorrectBicubic: each pixel p of the region, in every band to process, becomes
// v = p - f(x, y) + m_dAverage, computed in double: Lower of the luminance range if v is below it, else Upper if v
// is above it, else floor(v + 0.5), for float images v itself. NaN pixels stay NaN. The record need not come from a
// fit, and is not written.
//   "IOrlixImageProcess::CorrectPlanar: the surface is not finite." when a field is NaN or infinite; nothing is
//     written. Likewise CorrectBiquadratic and CorrectBicubic.
//
// Least squares by normal equations: C. F. Gauss, 1809; choice of the shortest solution: R. Penrose, 1956.
//
// Robust fits (least trimmed squares, Rousseeuw 1984) take the probability P, 0 < P <= 1, that a pixel belongs to
// the surface. Below, p = min(P, 0.99), n is the number of pixels and k the number of pixels that determine the
// surface (3, 6 and 10 for the plane, the biquadratic and the bicubic surface, 5 and 7 for the hemisphere and the
// tilted one):
//   - A trial draws k pixels at random, trunc(u n) in run order, passes the surface through them and scores it: the
//     sum of the K = trunc(n p) smallest squared residuals f(x, y) - z, formed in double and compared as if summed
//     exactly.
//   - The best score wins. The search ends after N = ceil(25 / p^k) trials in a row that were not better, and at
//     once at a score of 0, which none can beat (K = 0 gives it too). It also ends, though not before 200 trials,
//     when the call has formed 2^35 residuals, each trial counting as 2^15 more (half a minute). A trial far from
//     the best forms few residuals, so this cuts N only for small P, or where most pixels of a huge image are not
//     of the surface.
//   - The random numbers start again with every call, so the same pixels give the same record, on every system and
//     processor. Pixels drawn twice or on a line give the polynomial with the least coefficients among those
//     through them, and no hemisphere.
// NaN and infinite pixels count as bad ones and are left out of m_dAverage, which is otherwise the mean of all
// pixels. With fewer than k pixels, or without a trial of finite score: S_FALSE, and the record stays as it was.
// For every surface, before anything is written:
// "IOrlixImageProcess::get_RobustPlanarFit: good pixel probability must be larger than 0.0 and no larger than 1.0"
// (NaN too)
// "IOrlixImageProcess::get_RobustPlanarFit: multiband planar fit is not supported." (biquadratic, bicubic,
// hemisphere, angled hemisphere)
// RobustCorrect... does that fit, with its texts and results, and then the correction with its record.
MIDL_INTERFACE("d1babae8-ed51-4f06-ab58-27db44ec519a") IOrlixImageProcess : public IImageProcess {
    // Robust fit of a plane (least trimmed squares), see the interface.
    virtual HRESULT STDMETHODCALLTYPE get_RobustPlanarFit(double GoodPixelProbability, SPlanarFit* Fit) = 0;

    // Least-squares fit of a plane, see the interface.
    virtual HRESULT STDMETHODCALLTYPE get_PlanarFit(SPlanarFit* Fit) = 0;

    // Subtracts a plane from the pixels and adds its m_dAverage, see the interface.
    virtual HRESULT STDMETHODCALLTYPE CorrectPlanar(SPlanarFit* Fit) = 0;

    // get_RobustPlanarFit, and CorrectPlanar with its record.
    virtual HRESULT STDMETHODCALLTYPE RobustCorrectPlanar(double GoodPixelProbability) = 0;

    // Robust fit of a polynomial of degree 2 (least trimmed squares), see the interface.
    virtual HRESULT STDMETHODCALLTYPE get_RobustBiquadraticFit(double GoodPixelProbability, SBiquadraticFit* Fit) = 0;

    // Least-squares fit of a polynomial of degree 2, see the interface.
    virtual HRESULT STDMETHODCALLTYPE get_BiquadraticFit(SBiquadraticFit* Fit) = 0;

    // Subtracts a polynomial of degree 2 from the pixels and adds its m_dAverage, see the interface.
    virtual HRESULT STDMETHODCALLTYPE CorrectBiquadratic(SBiquadraticFit* Fit) = 0;

    // get_RobustBiquadraticFit, and CorrectBiquadratic with its record.
    virtual HRESULT STDMETHODCALLTYPE RobustCorrectBiquadratic(double GoodPixelProbability) = 0;

    // Robust fit of a polynomial of degree 3 (least trimmed squares), see the interface.
    virtual HRESULT STDMETHODCALLTYPE get_RobustBicubicFit(double GoodPixelProbability, SBicubicFit* Fit) = 0;

    // Least-squares fit of a polynomial of degree 3, see the interface.
    virtual HRESULT STDMETHODCALLTYPE get_BicubicFit(SBicubicFit* Fit) = 0;

    // Subtracts a polynomial of degree 3 from the pixels and adds its m_dAverage, see the interface.
    virtual HRESULT STDMETHODCALLTYPE CorrectBicubic(SBicubicFit* Fit) = 0;

    // get_RobustBicubicFit, and CorrectBicubic with its record.
    virtual HRESULT STDMETHODCALLTYPE RobustCorrectBicubic(double GoodPixelProbability) = 0;

    // Robust fit of a hemisphere (least trimmed squares), see the interface and get_HemisphereFit.
    virtual HRESULT STDMETHODCALLTYPE get_RobustHemisphereFit(double GoodPixelProbability, SHemisphereFit* Fit) = 0;

    // Algebraic fit of a hemisphere.
    // (x - m_dXCenter)^2 + (y - m_dYCenter)^2 + m_dZScale^2 (z - m_dZCenter)^2 = m_dRadius^2, lengths in pixels;
    // |m_dZScale| is the length of a grey level in pixels. m_dZScale is positive where m_dAverage lies above
    // m_dZCenter (the surface is the upper half: a dome), negative where it lies below (a bowl), 0 where they are
    // equal. Of all a0 (x^2 + y^2) + a1 z^2 + a2 x + a3 y + a4 z + a5 with a0 a1 = 1, the fit is the one with the
    // least sum of squares (Bookstein 1979). It is biased where noise is not small against the depth of the cap;
    // docs/accuracy.md says how much, and the tilted fit below is not biased. S_FALSE, and the record stays as it
    // was, where the pixels do not determine a hemisphere: fewer than five, all on a plane, in one row, or of two
    // values only.
    //   "IImageProcess::get_HemisphereFit: multiband measurement is not supported."
    //   "IImageProcess::get_HemisphereFit: not all pixels are finite."
    virtual HRESULT STDMETHODCALLTYPE get_HemisphereFit(SHemisphereFit* Fit) = 0;

    // Subtracts a hemisphere from the pixels and adds its m_dAverage.
    // A pixel p becomes p - f(x, y) + m_dAverage, clamped to the luminance range and rounded half up (not in float
    // images). f = m_dZCenter + sqrt(m_dRadius^2 - (x - m_dXCenter)^2 - (y - m_dYCenter)^2) / m_dZScale; outside
    // the circle of the radius the root is 0, and with m_dZScale = 0 f is m_dZCenter.
    //   "IOrlixImageProcess::CorrectHemisphere: the surface is not finite." (a field of the record)
    virtual HRESULT STDMETHODCALLTYPE CorrectHemisphere(SHemisphereFit* Fit) = 0;

    // get_RobustHemisphereFit, and CorrectHemisphere with its record.
    virtual HRESULT STDMETHODCALLTYPE RobustCorrectHemisphere(double GoodPixelProbability) = 0;

    // Robust fit of a tilted hemisphere (least trimmed squares), see the interface and get_AngledHemisphereFit.
    virtual HRESULT STDMETHODCALLTYPE get_RobustAngledHemisphereFit(double GoodPixelProbability,
        SAngledHemisphereFit* Fit) = 0;

    // Fit of a hemisphere on a base that is not level, by least squares in z.
    // f is that of CorrectHemisphere plus (tan(m_dAlpha) (x - m_dXCenter) + tan(m_dBeta) (y - m_dYCenter)) /
    // |m_dZScale|. m_dAlpha and m_dBeta, in radians between -pi/2 and pi/2, are the angles by which the base rises
    // along x and y; they are true angles where |m_dZScale| is the true length of a grey level in pixels. (A
    // rotation would not show: a rotated sphere is the same sphere.) The fit has the least sum of squares of
    // f(x, y) - z that damped Gauss-Newton steps (Levenberg 1944, Marquardt 1963) reach from HemisphereFit, from a
    // cap whose rim lies outside the region, and from the best of some whose rim lies in it. That is the least sum
    // for level and tilted caps in rectangles and circles, but where the rim touches the region's outermost pixels
    // it can be another minimum: see docs/accuracy.md. Only the terms of fourth order tell the radius: where noise
    // hides them, radii are arbitrary and may be thousands of times the region's width, though f fits. On a flat
    // cap a tilt and a shift of the centre look alike, so both are uncertain there, though f is not. S_FALSE, and
    // the record stays as it was, for fewer than seven pixels and where the pixels do not determine a hemisphere:
    // all on a plane, in one row, or of two values only.
    //   "IOrlixImageProcess::get_AngledHemisphereFit: multiband measurement is not supported."
    //   "IOrlixImageProcess::get_AngledHemisphereFit: not all pixels are finite."
    virtual HRESULT STDMETHODCALLTYPE get_AngledHemisphereFit(SAngledHemisphereFit* Fit) = 0;

    // Subtracts a tilted hemisphere from the pixels and adds its m_dAverage, like CorrectHemisphere.
    // "IOrlixImageProcess::CorrectAngledHemisphere: the surface is not finite."
    virtual HRESULT STDMETHODCALLTYPE CorrectAngledHemisphere(SAngledHemisphereFit* Fit) = 0;

    // get_RobustAngledHemisphereFit, and CorrectAngledHemisphere with its record.
    virtual HRESULT STDMETHODCALLTYPE RobustCorrectAngledHemisphere(double GoodPixelProbability) = 0;
};
DEFINE_GUID(IID_IOrlixImageProcess, 0xd1babae8, 0xed51, 0x4f06, 0xab,0x58, 0x27,0xdb,0x44,0xec,0x51,0x9a);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IOrlixImageProcess, 0xd1babae8, 0xed51, 0x4f06, 0xab,0x58, 0x27,0xdb,0x44,0xec,0x51,0x9a)
#endif

// Vertices in the client's order, and the closed outline through them.
// x is the column and y the row, pixel centres lie at whole numbers, and an edge joins the last vertex to the
// first. The outline may run either way round. A new polygon has no vertices. n is their number, and vertex n is
// vertex 0 again. The distance between two points is Euclidean, to the nearest double or one next to it, infinite
// beyond the largest double. Outputs are first set to 0. Vertices may be any numbers: results that depend on a
// non-finite vertex are not finite either, unless stated otherwise.
MIDL_INTERFACE("01b9f7cb-aabe-453b-aae9-6fb7516c999d") IPolygon : public IUnknown {
    // Sets the vertices.
    // They are copied; null puts all of them at (0, 0). After a failure the old vertices stay.
    // "IPolygon::Create: polygon must be created with at least one vertice."
    virtual HRESULT STDMETHODCALLTYPE Create(LONG lNumberOfVertices, SVertice* Vertices) = 0;

    // A new polygon with fewer vertices.
    // The vertices left out lie at most Tolerance from the edge that replaces them (Ramer 1972, Douglas and Peucker
    // 1973, on both halves of the outline between vertex 0 and the vertex farthest from it, the first of equals;
    // these two stay). Distances are measured from the edge, not from the line through it, which matters where an
    // outline folds back. Tolerance 0 leaves out vertices on a straight line; a negative one or NaN leaves out
    // none. All vertices stay when one is not finite and for n < 3.
    virtual HRESULT STDMETHODCALLTYPE Smooth(double Tolerance, IPolygon** hVal) = 0;

    // Number of vertices.
    virtual HRESULT STDMETHODCALLTYPE get_NumberOfVertices(LONG* hVal) = 0;

    // The polygon's own vertices; null without any. Valid until the next Create or release.
    virtual HRESULT STDMETHODCALLTYPE get_Vertices(SVertice** hVal) = 0;

    // The area inside the outline: |S| / 2.
    // S is the sum of x[i] y[i+1] - x[i+1] y[i], formed without rounding and rounded once: the area is the nearest
    // double or one next to it, wherever the outline lies.
    virtual HRESULT STDMETHODCALLTYPE get_Area(double* hVal) = 0;

    // The length of the outline: the sum of the distances from vertex i to vertex i + 1.
    virtual HRESULT STDMETHODCALLTYPE get_Perimeter(double* hVal) = 0;

    // The radius of a circle of the same perimeter: Perimeter 0.15915494309189535 (1 / 2 pi).
    virtual HRESULT STDMETHODCALLTYPE get_PerimeterEquivalentRadius(double* hVal) = 0;

    // The largest distance between two vertices; those that are not finite are left out.
    virtual HRESULT STDMETHODCALLTYPE get_Diameter(double* hVal) = 0;

    // How evenly the vertices lie about their mean: 1 for a regular polygon.
    // It is 1 - s / m, with m the mean and s the standard deviation (over n) of the distances from the mean of the
    // vertices. NaN when all vertices coincide and without vertices.
    virtual HRESULT STDMETHODCALLTYPE get_Circularity(double* hVal) = 0;

    // The distance of a point from the nearest vertex, and whether the point lies inside.
    // Edges do not count for the distance. S_FALSE inside the outline, S_OK outside. A point lies inside when the
    // angles from vertex i to vertex i + 1 as seen from it, each between -180 and 180 degrees, add up to a multiple
    // of 360 other than 0; this is decided without rounding. For a point on an edge the 180 degrees count as 180
    // where vertex i has the smaller y or lies in the direction (1, 0), else as -180; a vertex at the point counts
    // as one in that direction. If anything is not finite: outside.
    virtual HRESULT STDMETHODCALLTYPE get_DistanceFromPoint(double XReference, double YReference, double* hVal) = 0;

    // The angle in degrees, 0 to 360, that the outline covers as seen from a point.
    // Each edge covers the shorter way between the directions of its ends (nothing for a half turn), and overlaps
    // count once. 360 inside. Edges with a vertex that is at the point or not finite cover nothing. S_OK.
    virtual HRESULT STDMETHODCALLTYPE get_SubtendedAngle(double XReference, double YReference, double* hVal) = 0;

    // The centroid of the area inside the outline, with the sign of S.
    // It is the sum of (x[i] + x[i+1]) c[i] over 3 |S|, with c[i] = x[i] y[i+1] - x[i+1] y[i] and S their sum: the
    // centroid of the area where S is positive, its negative where S is negative. Not finite where S is 0. Summed
    // about vertex 0 with the digits of two doubles, so that an outline far from (0, 0) loses no digits.
    virtual HRESULT STDMETHODCALLTYPE GetCentroid(double* XCentroid, double* YCentroid) = 0;

    // The diameter and its two vertices.
    // Of several pairs (i, j), i < j, at that distance it is the first. All 0 for fewer than two vertices and when
    // all coincide.
    virtual HRESULT STDMETHODCALLTYPE GetDiameter(double* X1, double* Y1, double* X2, double* Y2, double* Diameter) = 0;

    // The nearest and the farthest vertex, the first of equals. The result is that of DistanceFromPoint. Without
    // vertices the nearest distance is the largest double.
    virtual HRESULT STDMETHODCALLTYPE GetDistancesFromPoint(double XReference, double YReference, double* XNearest,
        double* YNearest, double* NearestDistance, double* XFarthest, double* YFarthest, double* FarthestDistance) = 0;

    // A circle that fits the good vertices best (least trimmed squares, Rousseeuw 1984). With p = min(P, 0.99), a
    // trial puts a circle through three vertices trunc(u n) drawn at random; its score is the sum of the
    // trunc(n p + 0.5) smallest squared residuals (distance from the centre minus radius). The smallest score wins.
    // The search ends after ceil(25 / p^3) trials in a row that were not better; for many vertices and a small P it
    // ends sooner, after 2^32 visits of vertices, half a minute, but not before 200 trials. Vertices drawn on a
    // line give no circle. The random numbers start again with every call: the same vertices give the same circle
    // in every process. Without a circle (fewer than three vertices, all on a line, P not above 0): 0, 0, 0 and
    // S_FALSE.
    virtual HRESULT STDMETHODCALLTYPE RobustCircleFit(double GoodVerticeProbability, double* XCenter, double* YCenter,
        double* Radius) = 0;

    // A new polygon: the corners of the convex hull (Graham 1972).
    // They start at the lowest vertex (largest y, of these the largest x) and go by the right, the top and the left
    // of an image whose y points down. Decided exactly; no corner lies on an edge or appears twice. Vertices that
    // are not finite are left out. Fewer than three vertices give the same ones.
    virtual HRESULT STDMETHODCALLTYPE ConvexHull(IPolygon** hVal) = 0;

    // The smallest and largest coordinates of the vertices.
    // Without vertices 1.7976931348623157e308 twice, then -1.7976931348623157e308 twice. NaN is left out.
    virtual HRESULT STDMETHODCALLTYPE GetBounds(double* Left, double* Top, double* Right, double* Bottom) = 0;
};
DEFINE_GUID(IID_IPolygon, 0x01b9f7cb, 0xaabe, 0x453b, 0xaa,0xe9, 0x6f,0xb7,0x51,0x6c,0x99,0x9d);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IPolygon, 0x01b9f7cb, 0xaabe, 0x453b, 0xaa,0xe9, 0x6f,0xb7,0x51,0x6c,0x99,0x9d)
#endif

// Pixels around a reference pixel, in the order in which they were added; duplicates are kept.
// A new element is empty.
MIDL_INTERFACE("af4cb52c-e250-4e41-9531-1624e7e2cba1") IStructuringElement : public IUnknown {
    // Adds a pixel at (X, Y), relative to the reference pixel.
    virtual HRESULT STDMETHODCALLTYPE AddElement(LONG X, LONG Y) = 0;

    // Number of pixels.
    virtual HRESULT STDMETHODCALLTYPE get_NumberOfElements(LONG* hVal) = 0;

    // Removes all pixels.
    virtual HRESULT STDMETHODCALLTYPE ResetElements() = 0;

    // The pixels, in the order in which they were added.
    // Null until the first pixel is added. Valid until the elements change.
    virtual HRESULT STDMETHODCALLTYPE get_Elements(SElement** hVal) = 0;

    // Reflects the pixels through the reference pixel: (X, Y) becomes (-X, -Y); -2^31 stays.
    virtual HRESULT STDMETHODCALLTYPE Reflect() = 0;

    // Moves the pixels by (X, Y), modulo 2^32.
    virtual HRESULT STDMETHODCALLTYPE Translate(LONG X, LONG Y) = 0;

    // Smallest and largest X and Y. S_FALSE and zeros without elements.
    virtual HRESULT STDMETHODCALLTYPE GetExtent(LONG* Left, LONG* Top, LONG* Right, LONG* Bottom) = 0;

    // Makes the element a disk about the reference pixel.
    // It holds the pixels (X, Y) whose sqrt(X^2 + Y^2), rounded to double, is at most Radius: row by row from the
    // top, each row from the left. At most 2^24 pixels, up to a radius of 2310. A failure leaves the elements as
    // they were.
    // "IStructuringElement::CreateDisk: radius must be positive" (NaN too)
    // "IStructuringElement::CreateDisk: the disk has more than 16777216 pixels."
    virtual HRESULT STDMETHODCALLTYPE CreateDisk(double Radius) = 0;

    // The pixels as bytes of a bitmap's rows (IBitmap).
    // The reference pixel is bit lBit (0 to 7, 0 the leftmost) of its byte. The result is the half-open array
    // hBegin..hEnd with one entry for each byte, in the order of first appearance. A pixel at v = lBit + X has
    // byte = v / 8, truncated toward zero, and r = v - 8 byte; its bit is 0x80 >> r for byte >= 0, else 1 << (-1 -
    // r). The bit is 0 where r is negative and byte is 0, and where v is a negative multiple of 8. For v >= 0, from
    // the left edge of the reference byte on, this is the pixel's own bit; for other pixels translate the element
    // first. Valid until the elements change. Any other lBit gives E_INVALIDARG and two nulls.
    virtual HRESULT STDMETHODCALLTYPE get_BinaryElements(LONG lBit, SElement** hBegin, SElement** hEnd) = 0;
};
DEFINE_GUID(IID_IStructuringElement, 0xaf4cb52c, 0xe250, 0x4e41, 0x95,0x31, 0x16,0x24,0xe7,0xe2,0xcb,0xa1);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IStructuringElement, 0xaf4cb52c, 0xe250, 0x4e41, 0x95,0x31, 0x16,0x24,0xe7,0xe2,0xcb,0xa1)
#endif

// What a threshold found: the connected components of a bitmap's foreground, their shapes, positions and grey
// values. Made by IBitmapProcess::FindBlobs. The object keeps the runs of its own and does not change when the
// bitmap does. Each blob has
//   an index   its place in this object, 0 to Count - 1; what the methods take
//   a label    its number in the bitmap, from 0, in raster order of the first pixel (topmost row, then leftmost
//              column); it stays when blobs are selected or sorted
// Rules:
//  (1) Select and Sort make new objects; this one stays as it is.
//  (2) Only what is asked for is computed.
//  (3) Positions and boxes are in pixels. Lengths, areas and angles are measured in the calibrated plane: x and y
//      in units of the pixel size (PutMicronsPerPixel), so in pixels as long as none is put. Angles run from +x
//      towards +y.
//  (4) An index outside 0 to Count - 1 gives "IBlobs::get_Label: index is out of range", under the method's own
//      name; outputs are 0 or null.
//  (5) A pixel is a unit square about its centre. "Edge" outlines run around these squares, "centre" outlines
//      through the centres.
MIDL_INTERFACE("3ceaaf30-8142-48ea-91d9-3080f9b439fc") IBlobs : public IUnknown {
    // Number of blobs.
    virtual HRESULT STDMETHODCALLTYPE get_Count(LONG* hVal) = 0;

    // Width of the bitmap.
    virtual HRESULT STDMETHODCALLTYPE get_Width(LONG* hVal) = 0;

    // Height of the bitmap.
    virtual HRESULT STDMETHODCALLTYPE get_Height(LONG* hVal) = 0;

    // Connectivity of these blobs.
    virtual HRESULT STDMETHODCALLTYPE get_Connectivity(ConnectivityType* hVal) = 0;

    // The size of a pixel; 1 and 1 until it is put.
    virtual HRESULT STDMETHODCALLTYPE GetMicronsPerPixel(double* X, double* Y) = 0;

    // Sets the size of a pixel, for measurements from now on.
    // Objects selected or sorted from this one take it over. "IBlobs::PutMicronsPerPixel: the pixel size must be
    // positive." (infinity and NaN too)
    virtual HRESULT STDMETHODCALLTYPE PutMicronsPerPixel(double X, double Y) = 0;

    // The label of a blob.
    virtual HRESULT STDMETHODCALLTYPE get_Label(LONG Index, LONG* hVal) = 0;

    // The label of the hole in which a blob lies, and of a hole the label of its blob.
    // -1 for a blob that lies in no hole.
    virtual HRESULT STDMETHODCALLTYPE get_Parent(LONG Index, LONG* hVal) = 0;

    // The holes of these blobs, as blobs of their own, in raster order.
    // A hole is a component of the background in the other connectivity that is not connected to the outside of the
    // bitmap or the region. It does not include the blobs that lie in it.
    virtual HRESULT STDMETHODCALLTYPE get_Holes(IBlobs** hVal) = 0;

    // Shapes of the blobs First to First + Count - 1; only the groups asked for are written.
    // Desired is a sum of BinaryExtractMeasurementType. m_lSize of each record belongs to the caller; m_lLabel is
    // always written. An array of Count records; it stays as it is after a failure.
    //   "IBlobs::GetBinaryMeasurements: index is out of range" when a blob does not exist
    virtual HRESULT STDMETHODCALLTYPE GetBinaryMeasurements(LONG Desired, LONG First, LONG Count,
        SBinaryMeasurements* Measure) = 0;

    // Measures the grey values of an image inside all blobs, in one pass.
    // Any image of the bitmap's size. Desired is a sum of GrayExtractMeasurementType. The values stay with the
    // object, and what is selected or sorted from it, for GetGrayMeasurements, GetValues, Select and Sort, until
    // another image is measured. What was not asked for is NaN.
    //   "IBlobs::MeasureGray: multiband measurement is not supported." (BI_AllBands with several bands)
    //   "IBlobs::MeasureGray: the image has another size." / "IBlobs::MeasureGray: no source image."
    virtual HRESULT STDMETHODCALLTYPE MeasureGray(IImageVPA* Image, LONG BandIndex, LONG Desired) = 0;

    // Grey values of the blobs First to First + Count - 1, as MeasureGray found them.
    //   "IBlobs::GetGrayMeasurements: no image has been measured."
    virtual HRESULT STDMETHODCALLTYPE GetGrayMeasurements(LONG First, LONG Count, SBlobGrayMeasurements* Measure) = 0;

    // One measurement of the blobs First to First + Count - 1.
    virtual HRESULT STDMETHODCALLTYPE GetValues(SingleMeasurementType Type, LONG First, LONG Count, double* Values) = 0;

    // The blobs whose measurement lies between two values, both included, in the same order.
    // NaN is in no range. "IBlobs::Select: Lower cannot be larger than Upper." (also when a bound is NaN)
    virtual HRESULT STDMETHODCALLTYPE Select(SingleMeasurementType Type, double Lower, double Upper, IBlobs** hVal) = 0;

    // The blobs sorted by a measurement, upwards or, with Descending != 0, downwards.
    // Stable: equal values keep their order. NaN comes last.
    virtual HRESULT STDMETHODCALLTYPE Sort(SingleMeasurementType Type, LONG Descending, IBlobs** hVal) = 0;

    // A new bitmap of these blobs, of the size of the bitmap in which they were found.
    virtual HRESULT STDMETHODCALLTYPE get_Bitmap(IBitmap** hVal) = 0;

    // A new image (DT_DWORD) in which the pixels of each blob hold index + 1 and all others 0.
    virtual HRESULT STDMETHODCALLTYPE get_LabelImage(IImageVPA** hVal) = 0;

    // A blob as region of interest, so that everything else measures inside it.
    virtual HRESULT STDMETHODCALLTYPE get_Region(LONG Index, IRegionOfInterest** hVal) = 0;

    // The outline of a blob.
    // OT_PixelEdges: around its pixels, corners at half coordinates, no two edges in one line. OT_PixelCenters:
    // through the centres of its boundary pixels, from each to the next in the blob's connectivity; a line one
    // pixel wide is followed there and back. Hole -1 is the outer outline, 0 to the number of holes - 1 the outline
    // of a hole, in raster order. Outer outlines run clockwise on the screen, those of holes the other way, from
    // the first pixel in raster order on.
    //   "IBlobs::get_Outline: hole is out of range"; other types: E_INVALIDARG
    virtual HRESULT STDMETHODCALLTYPE get_Outline(LONG Index, OutlineType Type, LONG Hole, IPolygon** hVal) = 0;

    // The outline of a blob at a grey level: finer than its pixels.
    // Marching squares (Lorensen and Cline 1987) in the plane: between each pixel p of the blob and each neighbour
    // q, left, right, above or below, that is not in it, the outline has a vertex where linear interpolation of the
    // grey levels gives Level, at p + t (q - p) with t = (Level - g(p)) / (g(q) - g(p)). t is 1/2, the edge of the
    // pixel, where the level does not lie between the two and at the edge of the image. Where four pixels meet of
    // which two diagonal ones are in the blob, the outline passes as the blobs' connectivity says. For a threshold
    // between the grey levels k and k + 1, Level is k + 0.5. Hole as for get_Outline.
    //   "IBlobs::get_LevelOutline: hole is out of range", and the texts of MeasureGray under this name
    virtual HRESULT STDMETHODCALLTYPE get_LevelOutline(LONG Index, IImageVPA* Image, LONG BandIndex, double Level,
        LONG Hole, IPolygon** hVal) = 0;

    // Figures of these outlines, for the blobs First to First + Count - 1.
    virtual HRESULT STDMETHODCALLTYPE GetLevelMeasurements(IImageVPA* Image, LONG BandIndex, double Level, LONG First,
        LONG Count, SLevelMeasurements* Measure) = 0;
};
DEFINE_GUID(IID_IBlobs, 0x3ceaaf30, 0x8142, 0x48ea, 0x91,0xd9, 0x30,0x80,0xf9,0xb4,0x39,0xfc);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IBlobs, 0x3ceaaf30, 0x8142, 0x48ea, 0x91,0xd9, 0x30,0x80,0xf9,0xb4,0x39,0xfc)
#endif

// How an image is shown: display range, colour table and band.
// The pixels of the band to display become one of 256 display levels, which the colour table turns into colours.
// For a display range [Lower, Upper] and a pixel p within it
//   level = floor(255 (p - Lower) / (Upper - Lower) + 0.5)
// so Lower has level 0 and Upper 255; pixels outside have the level of the nearer end. Exact for integer pixels.
// For float pixels floor((p - Lower) (255 / (Upper - Lower)) + 0.5), every step in double; NaN has level 0. Also
// defined:
//   Lower > Upper     the formula holds, and the picture is a negative
//   Lower = Upper     p <= Lower has level 0, any other 255
//   a bound is NaN    (float) every pixel has level 0
// With BI_AllBands as band to display, an image of three or more bands is shown in colour: its first three bands
// are red, green and blue, each through its own component of the colour table. An image of two bands shows the
// first. The range and the colour table survive until the pixel type of the image changes, which resets them. Each
// creation sets the band to display: 0 for an image of one band, BI_AllBands for several.
MIDL_INTERFACE("5e395b79-dcda-41be-a3ae-26e7fc0c609b") IDisplayProcess : public IUnknown {
    // The band that is shown: an index, or BI_AllBands.
    // Each creation sets it: 0 for an image of one band, BI_AllBands for several. Putting it sets DisplayDirty.
    //   "IDisplayProcess::put_BandToDisplay: invalid band to process"
    virtual HRESULT STDMETHODCALLTYPE get_BandToDisplay(LONG* hVal) = 0;

    // The band that is shown: an index, or BI_AllBands.
    // Each creation sets it: 0 for an image of one band, BI_AllBands for several. Putting it sets DisplayDirty.
    //   "IDisplayProcess::put_BandToDisplay: invalid band to process"
    virtual HRESULT STDMETHODCALLTYPE put_BandToDisplay(LONG newVal) = 0;

    // Whether the display is out of date: 1 or 0.
    // Set by every method of this library that writes pixels, display range or band to display, and by
    // IImageProcessBase::put_BandToProcess; cleared when the levels have been computed again. Clients that write
    // pixels through a pointer (IImageVPA::VPA, AttachBuffer) put it afterwards; any value makes the next picture
    // compute its levels again.
    virtual HRESULT STDMETHODCALLTYPE get_DisplayDirty(LONG* hVal) = 0;

    // Whether the display is out of date: 1 or 0.
    // Set by every method of this library that writes pixels, display range or band to display, and by
    // IImageProcessBase::put_BandToProcess; cleared when the levels have been computed again. Clients that write
    // pixels through a pointer (IImageVPA::VPA, AttachBuffer) put it afterwards; any value makes the next picture
    // compute its levels again.
    virtual HRESULT STDMETHODCALLTYPE put_DisplayDirty(LONG newVal) = 0;

    // The colour of display level Entry as 0x00BBGGRR, initially grey Entry. The top byte of a value that is put is
    // ignored.
    //   "IDisplayProcess: color table entry is out of range." unless 0 <= Entry <= 255
    virtual HRESULT STDMETHODCALLTYPE get_ColorTable(LONG Entry, OLE_COLOR* hVal) = 0;

    // The colour of display level Entry as 0x00BBGGRR, initially grey Entry. The top byte of a value that is put is
    // ignored.
    //   "IDisplayProcess: color table entry is out of range." unless 0 <= Entry <= 255
    virtual HRESULT STDMETHODCALLTYPE put_ColorTable(LONG Entry, OLE_COLOR newVal) = 0;

    // Spreads the greys evenly over the pixels.
    // Counts the levels of the pixels within the display range, in the band to display (all bands for BI_AllBands)
    // inside the region of interest, and makes entry i the grey floor(255 C[i] / T + 0.5), where C[i] is the count
    // of the levels 0 to i and T the count of all. Exact. The range stays.
    //   "IDisplayProcess::EqualizeColorTable: empty histogram" when no pixel lies within the range; the table
    //   stays.
    virtual HRESULT STDMETHODCALLTYPE EqualizeColorTable() = 0;

    // The display range; initially the full range of an integer type, or [0, 255] for float images.
    virtual HRESULT STDMETHODCALLTYPE GetDisplayRange(double* Lower, double* Upper) = 0;

    // Sets the display range, converted to the pixel type.
    // Truncates toward zero and keeps the low-order bits of the pixel type: 10.9 becomes 10, and for bytes 256
    // becomes 0 and -1 becomes 255. NaN, infinities and magnitudes from 2^63 on become 0. A float image takes the
    // nearest float, or the end of the float range beyond it. Nothing is checked. Sets DisplayDirty.
    virtual HRESULT STDMETHODCALLTYPE PutDisplayRange(double Lower, double Upper) = 0;

    // Sets the display range to what the pixels of the region span.
    // Pixels count in the band to display (all bands for BI_AllBands) inside the region of interest, except NaN;
    // the range is put as by PutDisplayRange. A trim of 0 gives the smallest or the largest pixel, any other trim
    // the location that IHistogram::AutoThresholdTrim finds in their histogram (256 bins over [0, 255] for bytes;
    // for other types 1024 from smallest to largest, or one bin for each value where that makes fewer). bRoundOut
    // != 0 then widens the range: to [0, 1] when it lies within that, else to [0, m] with the first m of 255, 1023,
    // 4095 and 65535 that Upper does not exceed; it stays when Upper exceeds all of them. Sets DisplayDirty. For a
    // region without pixels S_FALSE, and nothing changes. Texts of IHistogram::AutoThresholdTrim.
    virtual HRESULT STDMETHODCALLTYPE SnapDisplayRange(double TrimLeft, double TrimRight, LONG bRoundOut) = 0;
};
DEFINE_GUID(IID_IDisplayProcess, 0x5e395b79, 0xdcda, 0x41be, 0xa3,0xae, 0x26,0xe7,0xfc,0x0c,0x60,0x9b);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IDisplayProcess, 0x5e395b79, 0xdcda, 0x41be, 0xa3,0xae, 0x26,0xe7,0xfc,0x0c,0x60,0x9b)
#endif

// The version, the file and the processor variants of this library; OrlixImage implements it.
MIDL_INTERFACE("421066d7-a5e1-4d31-9b61-7c241f7691e7") IModuleInformation : public IUnknown {
    // The version of the library: "major.minor.patch".
    virtual HRESULT STDMETHODCALLTYPE get_Version(BSTR* hVal) = 0;

    // Full path of the module's file.
    virtual HRESULT STDMETHODCALLTYPE get_ModulePath(BSTR* hVal) = 0;

    // Number of kernels: hot operations that have variants for several processors.
    virtual HRESULT STDMETHODCALLTYPE get_NumberOfKernels(LONG* hVal) = 0;

    // Name of a kernel, and the variant (scalar, sse2, avx2, ...) that this process uses.
    // "IModuleInformation::GetKernel: Index is out of range."
    virtual HRESULT STDMETHODCALLTYPE GetKernel(LONG Index, BSTR* Kernel, BSTR* Variant) = 0;
};
DEFINE_GUID(IID_IModuleInformation, 0x421066d7, 0xa5e1, 0x4d31, 0x9b,0x61, 0x7c,0x24,0x1f,0x76,0x91,0xe7);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IModuleInformation, 0x421066d7, 0xa5e1, 0x4d31, 0x9b,0x61, 0x7c,0x24,0x1f,0x76,0x91,0xe7)
#endif

// A device-independent bitmap (DIB) in memory: a header, a palette and rows of pixels.
// Cameras and the clipboard hand them over. OrlixBuffer implements this interface, and with it:
//   IImageVPA       for a bitmap of 8 bits whose palette entries are the greys of their numbers. Any other bitmap,
//                   and none: "IImageVPA: the bitmap does not have 8 bits and a grey palette." CreateImage makes an
//                   image of every bitmap.
//   IPictureExZoom  and IPictureMemory, with the events of IPictureExEvents. A rendering shows the pixels and the
//                   palette as they are at that moment. The value of GetPixelInfo is what is stored, up to 8 bits,
//                   and the red level of deeper pixels. AttachBuffer makes a top-down bitmap of the client's pixels
//                   under a header of its own: 8 bits in grey, or 16. A refused buffer leaves the bitmap as it was.
// Rules:
//  (1) Rows are multiples of 4 bytes, bottom row first unless the bitmap is top-down. Pixels have 1, 4 or 8 bits
//      (entries of the palette; the leftmost pixel has the highest bits), 16 or 32 (masks; 5 or 8 bits for each
//      colour where the header has none), or 24 (blue, green, red). The value v under a mask of n bits is the level
//      floor(255 v / (2^n - 1) + 0.5). Alpha is kept and not applied; colour spaces are not applied.
//  (2) A bitmap of the object's own is one block of memory: BITMAPINFOHEADER, masks if rule 1 does not give them,
//      palette, pixels. Reading expands run lengths; the pixels that they leave out are 0.
//  (3) "IDIBImage::GetPacked: no image." is the failure of a method that needs a bitmap where there is none.
//  (4) A bitmap with 2^31 bytes of pixels or more is refused: "IDIBImage::Create: the bitmap is too large." Methods
//      that read one report, each under its own name:
//        "IDIBImage::PutPacked: problems reading the header."
//        "IDIBImage::PutPacked: unknown number of bits per pixel."
//        "IDIBImage::PutPacked: unknown compression."
//        "IDIBImage::PutPacked: invalid colour masks."
//        "IDIBImage::PutPacked: fewer bytes than the pixels need."
//        "IDIBImage::PutPacked: the run lengths leave the image."
//  (5) A failed creation leaves the bitmap as it was. A creation resets the coordinate map of IImageVPA.
MIDL_INTERFACE("5db69631-7b1a-481a-aaef-380113828dd8") IDIBImage : public IUnknown {
    // Creates a bitmap whose pixels are 0.
    // Height is negative for a top-down bitmap. The palette is grey: 0 and 255, multiples of 17, or all 256 levels.
    //   "IDIBImage::Create: Width must be positive."
    //   "IDIBImage::Create: Height must not be 0."
    //   "IDIBImage::Create: the bitmap must have 1, 4, 8, 16, 24 or 32 bits per pixel."
    virtual HRESULT STDMETHODCALLTYPE Create(LONG Width, LONG Height, LONG BitsPerPixel) = 0;

    // Uses the client's header, palette and pixels as the bitmap, without a copy.
    // Header is the address of a BITMAPCOREHEADER, BITMAPINFOHEADER, or one of 52 bytes and more; masks and palette
    // follow it. Null for Bits: the pixels follow the palette (a packed bitmap). Size, depth and masks are read
    // once; the palette and the pixels are read and written in place, and resolution is written there. The memory
    // must outlive the object or its next creation. Texts of rule 4, and
    //   "IDIBImage::Attach: compressed bitmaps cannot be attached."
    //   "IDIBImage::Attach: the system does not allow to read and write the header."
    //   "IDIBImage::Attach: the system does not allow to read and write the pixels."
    // Memory of the bitmap that the attachment would free is refused like that, too.
    virtual HRESULT STDMETHODCALLTYPE Attach(void* Header, void* Bits) = 0;

    // Makes a bottom-up bitmap of an image: one band gives 8 bits and a grey palette, three bands 24 bits.
    // The image's pixel size is kept, its coordinate map is not.
    //   "IDIBImage::CreateFromImage: the image must have 8 bits and one band or three."
    virtual HRESULT STDMETHODCALLTYPE CreateFromImage(IImageVPA* Image) = 0;

    // A new OrlixImage (DT_BYTE) with the pixels and the pixel size of the bitmap.
    // One band if all palette entries in use are grey, otherwise three (red, green, blue). *Image is null after a
    // failure: "IDIBImage::CreateImage: a pixel is outside the palette."
    virtual HRESULT STDMETHODCALLTYPE CreateImage(IImageVPAEx** Image) = 0;

    // Width, height and bits per pixel; zeros without a bitmap.
    // Height is negative for a top-down bitmap.
    virtual HRESULT STDMETHODCALLTYPE GetFormat(LONG* Width, LONG* Height, LONG* BitsPerPixel) = 0;

    // Address of the header, BITMAPINFO; null without a bitmap.
    // It stays valid until the next creation or the release of the object. For reading: changes of size and depth
    // have no effect, and those of the palette take effect at once.
    virtual HRESULT STDMETHODCALLTYPE get_Header(void** hVal) = 0;

    // Address of the first row in memory, and the distance in bytes from a row to the next one there.
    // The bottom row of a bottom-up bitmap. Rows can be written. Null and 0 without a bitmap; valid like Header.
    virtual HRESULT STDMETHODCALLTYPE GetBits(void** Bits, LONG* RowStride) = 0;

    // Number of entries of the palette; 0 for more than 8 bits and without a bitmap.
    virtual HRESULT STDMETHODCALLTYPE get_NumberOfColors(LONG* hVal) = 0;

    // An entry of the palette, 0x00BBGGRR.
    // "IDIBImage: color table entry is out of range."
    virtual HRESULT STDMETHODCALLTYPE get_ColorTable(LONG Entry, OLE_COLOR* hVal) = 0;

    // An entry of the palette, 0x00BBGGRR.
    // "IDIBImage: color table entry is out of range."
    virtual HRESULT STDMETHODCALLTYPE put_ColorTable(LONG Entry, OLE_COLOR newVal) = 0;

    // Physical size of a pixel in microns. S_FALSE and zeros when it is not known.
    virtual HRESULT STDMETHODCALLTYPE GetMicronsPerPixel(double* X, double* Y) = 0;

    // Sets the physical size of a pixel in microns: finite values above 0, or 0, 0 for unknown.
    // The header receives whole pixels per metre, 0 where it cannot hold them. BITMAPCOREHEADER has no place for
    // them. "IDIBImage::PutMicronsPerPixel: the pixel size must be positive."
    virtual HRESULT STDMETHODCALLTYPE PutMicronsPerPixel(double X, double Y) = 0;

    // Copies the packed bitmap into the caller's memory: header, masks, palette, pixels.
    // HeaderSize is 40 for BITMAPINFOHEADER, the clipboard's CF_DIB, or 124 for BITMAPV5HEADER, CF_DIBV5. *Needed
    // is the number of bytes. Nothing is copied when Size is less (S_FALSE); for Size 0 Bytes may be null.
    //   "IDIBImage::GetPacked: the header must have 40 or 124 bytes."
    //   "IDIBImage::GetPacked: Size must not be negative."
    virtual HRESULT STDMETHODCALLTYPE GetPacked(LONG HeaderSize, LONG Size, unsigned char* Bytes, LONG* Needed) = 0;

    // Makes the bitmap a copy of a packed one, with any header that Attach takes, or run lengths.
    // Texts of rule 4, and "IDIBImage::PutPacked: Size must not be negative."
    virtual HRESULT STDMETHODCALLTYPE PutPacked(LONG Size, unsigned char* Bytes) = 0;

    // Loads a BMP file of any kind, with its depth, palette and pixel size.
    // Texts of rule 4, and
    //   "IDIBImage::LoadFromFile: failed to open file."
    //   "IDIBImage::LoadFromFile: failed to read file."
    //   "IDIBImage::LoadFromFile: not a BMP file."
    virtual HRESULT STDMETHODCALLTYPE LoadFromFile(BSTR FileName) = 0;

    // Saves the bitmap as a BMP file, with its depth and palette.
    // A failure leaves an older file of that name as it was: "IDIBImage::SaveToFile: failed to write file."
    virtual HRESULT STDMETHODCALLTYPE SaveToFile(BSTR FileName) = 0;

    // Makes the bitmap a copy of a system bitmap (HBITMAP), in the depth that it has.
    // IPictureEx makes system bitmaps (CreateHBITMAP, CreateDIBSection). Off Windows: E_NOTIMPL.
    //   "IDIBImage::CreateFromHBITMAP: invalid HBITMAP"
    virtual HRESULT STDMETHODCALLTYPE CreateFromHBITMAP(void* Bitmap) = 0;

    // Makes the bitmap a copy of the one on the clipboard; S_FALSE where there is none.
    // Off Windows: E_NOTIMPL. Texts of rule 4, and "IDIBImage::CreateFromClipboard: the clipboard is in use."
    virtual HRESULT STDMETHODCALLTYPE CreateFromClipboard() = 0;

    // Puts a copy of the bitmap on the clipboard, in place of what is there (CF_DIB).
    // Off Windows: E_NOTIMPL. "IDIBImage::CopyToClipboard: the clipboard is in use."
    virtual HRESULT STDMETHODCALLTYPE CopyToClipboard() = 0;
};
DEFINE_GUID(IID_IDIBImage, 0x5db69631, 0x7b1a, 0x481a, 0xaa,0xef, 0x38,0x01,0x13,0x82,0x8d,0xd8);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IDIBImage, 0x5db69631, 0x7b1a, 0x481a, 0xaa,0xef, 0x38,0x01,0x13,0x82,0x8d,0xd8)
#endif

// Not built yet: no slots until its class is built.
// Creating a class that is not built answers CLASS_E_CLASSNOTAVAILABLE and reports "This class is not built yet."
MIDL_INTERFACE("ac6239fd-350e-4ff0-845e-2c639e5b62ae") ILineGraphicOverlay : public IGraphicOverlay {
};
DEFINE_GUID(IID_ILineGraphicOverlay, 0xac6239fd, 0x350e, 0x4ff0, 0x84,0x5e, 0x2c,0x63,0x9e,0x5b,0x62,0xae);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(ILineGraphicOverlay, 0xac6239fd, 0x350e, 0x4ff0, 0x84,0x5e, 0x2c,0x63,0x9e,0x5b,0x62,0xae)
#endif

// Not built yet: no slots until its class is built.
// Creating a class that is not built answers CLASS_E_CLASSNOTAVAILABLE and reports "This class is not built yet."
MIDL_INTERFACE("2dcd674c-8f2a-4e33-9eb4-93c94f9d0078") ICircleGraphicOverlay : public IGraphicOverlay {
};
DEFINE_GUID(IID_ICircleGraphicOverlay, 0x2dcd674c, 0x8f2a, 0x4e33, 0x9e,0xb4, 0x93,0xc9,0x4f,0x9d,0x00,0x78);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(ICircleGraphicOverlay, 0x2dcd674c, 0x8f2a, 0x4e33, 0x9e,0xb4, 0x93,0xc9,0x4f,0x9d,0x00,0x78)
#endif

// Not built yet: no slots until its class is built.
// Creating a class that is not built answers CLASS_E_CLASSNOTAVAILABLE and reports "This class is not built yet."
MIDL_INTERFACE("1308ae7d-bd0a-46c5-b65e-c5cf62251797") ITextGraphicOverlay : public IGraphicOverlay {
};
DEFINE_GUID(IID_ITextGraphicOverlay, 0x1308ae7d, 0xbd0a, 0x46c5, 0xb6,0x5e, 0xc5,0xcf,0x62,0x25,0x17,0x97);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(ITextGraphicOverlay, 0x1308ae7d, 0xbd0a, 0x46c5, 0xb6,0x5e, 0xc5,0xcf,0x62,0x25,0x17,0x97)
#endif

// Not built yet: no slots until its class is built.
// Creating a class that is not built answers CLASS_E_CLASSNOTAVAILABLE and reports "This class is not built yet."
MIDL_INTERFACE("1cc42abb-1f60-40b9-a4de-1da89d85341f") ISplineImage : public IUnknown {
};
DEFINE_GUID(IID_ISplineImage, 0x1cc42abb, 0x1f60, 0x40b9, 0xa4,0xde, 0x1d,0xa8,0x9d,0x85,0x34,0x1f);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(ISplineImage, 0x1cc42abb, 0x1f60, 0x40b9, 0xa4,0xde, 0x1d,0xa8,0x9d,0x85,0x34,0x1f)
#endif

// Not built yet: no slots until its class is built.
// Creating a class that is not built answers CLASS_E_CLASSNOTAVAILABLE and reports "This class is not built yet."
MIDL_INTERFACE("3f465cc3-a580-4097-a039-a37e4cca840e") IHistogramDialog : public IUnknown {
};
DEFINE_GUID(IID_IHistogramDialog, 0x3f465cc3, 0xa580, 0x4097, 0xa0,0x39, 0xa3,0x7e,0x4c,0xca,0x84,0x0e);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IHistogramDialog, 0x3f465cc3, 0xa580, 0x4097, 0xa0,0x39, 0xa3,0x7e,0x4c,0xca,0x84,0x0e)
#endif

// Not built yet: no slots until its class is built.
// Creating a class that is not built answers CLASS_E_CLASSNOTAVAILABLE and reports "This class is not built yet."
MIDL_INTERFACE("f6694e07-b1ae-407b-b44e-4ec08e6d66a7") IHistogramDialogEvents : public IUnknown {
};
DEFINE_GUID(IID_IHistogramDialogEvents, 0xf6694e07, 0xb1ae, 0x407b, 0xb4,0x4e, 0x4e,0xc0,0x8e,0x6d,0x66,0xa7);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IHistogramDialogEvents, 0xf6694e07, 0xb1ae, 0x407b, 0xb4,0x4e, 0x4e,0xc0,0x8e,0x6d,0x66,0xa7)
#endif

// Not built yet: no slots until its class is built.
// Creating a class that is not built answers CLASS_E_CLASSNOTAVAILABLE and reports "This class is not built yet."
MIDL_INTERFACE("e40f3b84-ec19-4ab2-8849-db88568efb83") IImageViewDisp : public IDispatch {
};
DEFINE_GUID(DIID_IImageViewDisp, 0xe40f3b84, 0xec19, 0x4ab2, 0x88,0x49, 0xdb,0x88,0x56,0x8e,0xfb,0x83);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageViewDisp, 0xe40f3b84, 0xec19, 0x4ab2, 0x88,0x49, 0xdb,0x88,0x56,0x8e,0xfb,0x83)
#endif

// Not built yet: no slots until its class is built.
// Creating a class that is not built answers CLASS_E_CLASSNOTAVAILABLE and reports "This class is not built yet."
MIDL_INTERFACE("f25ed9d9-bb5d-416d-afdc-5e1baa4b2f08") IImageViewEventsDisp : public IDispatch {
};
DEFINE_GUID(DIID_IImageViewEventsDisp, 0xf25ed9d9, 0xbb5d, 0x416d, 0xaf,0xdc, 0x5e,0x1b,0xaa,0x4b,0x2f,0x08);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IImageViewEventsDisp, 0xf25ed9d9, 0xbb5d, 0x416d, 0xaf,0xdc, 0x5e,0x1b,0xaa,0x4b,0x2f,0x08)
#endif

// A polygon and its measures.
class DECLSPEC_UUID("e0af5e0b-fb80-4687-b204-943ebc39cff8") OrlixPolygon;
DEFINE_GUID(CLSID_OrlixPolygon, 0xe0af5e0b, 0xfb80, 0x4687, 0xb2,0x04, 0x94,0x3e,0xbc,0x39,0xcf,0xf8);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixPolygon, 0xe0af5e0b, 0xfb80, 0x4687, 0xb2,0x04, 0x94,0x3e,0xbc,0x39,0xcf,0xf8)
#endif

// A histogram, its statistics and automatic thresholds.
class DECLSPEC_UUID("9cc2d5ee-e548-46b4-86d0-6d11326da63f") OrlixHistogram;
DEFINE_GUID(CLSID_OrlixHistogram, 0x9cc2d5ee, 0xe548, 0x46b4, 0x86,0xd0, 0x6d,0x11,0x32,0x6d,0xa6,0x3f);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixHistogram, 0x9cc2d5ee, 0xe548, 0x46b4, 0x86,0xd0, 0x6d,0x11,0x32,0x6d,0xa6,0x3f)
#endif

// A bitmap with one bit per pixel.
class DECLSPEC_UUID("5fdd9a2b-f56c-4c60-8009-cc17cb4a1af0") OrlixBitmap;
DEFINE_GUID(CLSID_OrlixBitmap, 0x5fdd9a2b, 0xf56c, 0x4c60, 0x80,0x09, 0xcc,0x17,0xcb,0x4a,0x1a,0xf0);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixBitmap, 0x5fdd9a2b, 0xf56c, 0x4c60, 0x80,0x09, 0xcc,0x17,0xcb,0x4a,0x1a,0xf0)
#endif

// An image: pixels, files, processing, surface fits and display.
class DECLSPEC_UUID("aa7a9966-c648-40d2-8bc7-8d5367631bce") OrlixImage;
DEFINE_GUID(CLSID_OrlixImage, 0xaa7a9966, 0xc648, 0x40d2, 0x8b,0xc7, 0x8d,0x53,0x67,0x63,0x1b,0xce);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixImage, 0xaa7a9966, 0xc648, 0x40d2, 0x8b,0xc7, 0x8d,0x53,0x67,0x63,0x1b,0xce)
#endif

// A structuring element.
class DECLSPEC_UUID("0a872d7f-8e99-44d0-91cf-e008f8fb3092") OrlixStructuringElement;
DEFINE_GUID(CLSID_OrlixStructuringElement, 0x0a872d7f, 0x8e99, 0x44d0, 0x91,0xcf, 0xe0,0x08,0xf8,0xfb,0x30,0x92);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixStructuringElement, 0x0a872d7f, 0x8e99, 0x44d0, 0x91,0xcf, 0xe0,0x08,0xf8,0xfb,0x30,0x92)
#endif

// Not built yet: creating it answers CLASS_E_CLASSNOTAVAILABLE.
class DECLSPEC_UUID("31a46664-0854-4433-88aa-eb0f8cee1204") OrlixLineGraphicOverlay;
DEFINE_GUID(CLSID_OrlixLineGraphicOverlay, 0x31a46664, 0x0854, 0x4433, 0x88,0xaa, 0xeb,0x0f,0x8c,0xee,0x12,0x04);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixLineGraphicOverlay, 0x31a46664, 0x0854, 0x4433, 0x88,0xaa, 0xeb,0x0f,0x8c,0xee,0x12,0x04)
#endif

// Not built yet: creating it answers CLASS_E_CLASSNOTAVAILABLE.
class DECLSPEC_UUID("cec08100-a391-41c1-8fb8-d300572684fd") OrlixCircleGraphicOverlay;
DEFINE_GUID(CLSID_OrlixCircleGraphicOverlay, 0xcec08100, 0xa391, 0x41c1, 0x8f,0xb8, 0xd3,0x00,0x57,0x26,0x84,0xfd);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixCircleGraphicOverlay, 0xcec08100, 0xa391, 0x41c1, 0x8f,0xb8, 0xd3,0x00,0x57,0x26,0x84,0xfd)
#endif

// A device-independent bitmap in memory, as a picture and an image.
class DECLSPEC_UUID("bc38c191-d432-4762-b996-3d15755da2fd") OrlixBuffer;
DEFINE_GUID(CLSID_OrlixBuffer, 0xbc38c191, 0xd432, 0x4762, 0xb9,0x96, 0x3d,0x15,0x75,0x5d,0xa2,0xfd);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixBuffer, 0xbc38c191, 0xd432, 0x4762, 0xb9,0x96, 0x3d,0x15,0x75,0x5d,0xa2,0xfd)
#endif

// Not built yet: creating it answers CLASS_E_CLASSNOTAVAILABLE.
class DECLSPEC_UUID("db2cb075-8206-40e3-8fca-cfc5003943d6") OrlixSplineImage;
DEFINE_GUID(CLSID_OrlixSplineImage, 0xdb2cb075, 0x8206, 0x40e3, 0x8f,0xca, 0xcf,0xc5,0x00,0x39,0x43,0xd6);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixSplineImage, 0xdb2cb075, 0x8206, 0x40e3, 0x8f,0xca, 0xcf,0xc5,0x00,0x39,0x43,0xd6)
#endif

// A region of interest: rectangle or disk.
class DECLSPEC_UUID("bc786b12-4454-4230-86d9-b49519e208bf") OrlixShapeRegionOfInterest;
DEFINE_GUID(CLSID_OrlixShapeRegionOfInterest, 0xbc786b12, 0x4454, 0x4230, 0x86,0xd9, 0xb4,0x95,0x19,0xe2,0x08,0xbf);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixShapeRegionOfInterest, 0xbc786b12, 0x4454, 0x4230, 0x86,0xd9, 0xb4,0x95,0x19,0xe2,0x08,0xbf)
#endif

// Help for scripts: streams, clipboard, folders, and a measurement in one call.
class DECLSPEC_UUID("d591cc7c-7192-4253-8485-458fee38fe75") OrlixVBHelper;
DEFINE_GUID(CLSID_OrlixVBHelper, 0xd591cc7c, 0x7192, 0x4253, 0x84,0x85, 0x45,0x8f,0xee,0x38,0xfe,0x75);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixVBHelper, 0xd591cc7c, 0x7192, 0x4253, 0x84,0x85, 0x45,0x8f,0xee,0x38,0xfe,0x75)
#endif

// Not built yet: creating it answers CLASS_E_CLASSNOTAVAILABLE.
class DECLSPEC_UUID("c35e3781-66f8-4dee-b487-451882355339") OrlixImageView;
DEFINE_GUID(CLSID_OrlixImageView, 0xc35e3781, 0x66f8, 0x4dee, 0xb4,0x87, 0x45,0x18,0x82,0x35,0x53,0x39);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixImageView, 0xc35e3781, 0x66f8, 0x4dee, 0xb4,0x87, 0x45,0x18,0x82,0x35,0x53,0x39)
#endif

// Not built yet: creating it answers CLASS_E_CLASSNOTAVAILABLE.
class DECLSPEC_UUID("d51cc6a3-98fa-44ae-9505-778148fed93c") OrlixTextGraphicOverlay;
DEFINE_GUID(CLSID_OrlixTextGraphicOverlay, 0xd51cc6a3, 0x98fa, 0x44ae, 0x95,0x05, 0x77,0x81,0x48,0xfe,0xd9,0x3c);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixTextGraphicOverlay, 0xd51cc6a3, 0x98fa, 0x44ae, 0x95,0x05, 0x77,0x81,0x48,0xfe,0xd9,0x3c)
#endif

// Not built yet: creating it answers CLASS_E_CLASSNOTAVAILABLE.
class DECLSPEC_UUID("bc6a61f4-18f5-48fe-ba43-c9b34eb702b0") OrlixHistogramDialog;
DEFINE_GUID(CLSID_OrlixHistogramDialog, 0xbc6a61f4, 0x18f5, 0x48fe, 0xba,0x43, 0xc9,0xb3,0x4e,0xb7,0x02,0xb0);
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(OrlixHistogramDialog, 0xbc6a61f4, 0x18f5, 0x48fe, 0xba,0x43, 0xc9,0xb3,0x4e,0xb7,0x02,0xb0)
#endif

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

#endif
