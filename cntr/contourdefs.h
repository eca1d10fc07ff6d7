#ifndef CNTR_CONTOURDEFS_H
#define CNTR_CONTOURDEFS_H

#include <string>

#include <cntr/export.h>
#include <foundation/exception.h>
#include <foundation/persistent.h>

class xcArchive;

// The members of each concrete exception class (they differ only in the class name):
// - a public constructor from the message (empty by default), copy construction and assignment
//   (they copy the message), the destructor;
// - errorNumber(): the class's fixed number;
// - suicideAndRethrow(): copies this object, deletes it (it must come from new) and throws the
//   copy as this class;
// - dispatchSerialize(): the record, a version byte (0) followed by the Errors record; loading a
//   version byte other than 0 throws xcArchive::UnknownVersion naming the class
//   ("xcContourDefs::<class>") and line 0;
// - make() and sExemplar: the archive's factory (an object with an empty message) and its
//   registration at library load.
#define CNTR_CONTOUR_ERROR_MEMBERS(Name)                                  \
public:                                                                   \
    explicit Name(const std::wstring& message = std::wstring());          \
    Name(const Name& other);                                              \
    Name& operator=(const Name& other);                                   \
    ~Name() override;                                                     \
    long errorNumber() const override;                                    \
    void suicideAndRethrow() override;                                    \
                                                                          \
protected:                                                                \
    void dispatchSerialize(xcArchive& ar) override;                       \
    void serialize_(xcArchive& ar, unsigned char version);                \
                                                                          \
private:                                                                  \
    static xcPersistent* make();                                          \
    static xc_Instantiator sExemplar;

/// The enumerations and the exception classes shared by contours, regions and region sets.
/// It holds no data; the shape classes name its members as xcContourDefs::... .
class xcContourDefs {
public:
    /// How xcContour::encloseCircle (and diameter) measure the spread of the vertices. The value
    /// also indexes the contour's per-mode circle cache; any other value is refused with
    /// BadParams("diameterMode is not one of the valid enums").
    enum DiameterMode {
        /// The circle through the two vertices that lie furthest apart (their midpoint and half
        /// their distance); other vertices may lie outside it.
        furthestVertexPair = 0,
        /// The circle centred on the first vertex through the vertex furthest from it; it
        /// contains every vertex.
        fromFirstVertex = 1
    };

    /// A rendering hint for xcContour::draw. The contour accepts every value and draws the same
    /// line segments whatever it is; the hint exists for callers that keep it with the shape.
    enum DrawMode {
        /// Plain drawing.
        drawNormal = 0,
        /// Drawing that the caller wants to stand out (for example a selected shape).
        drawHighlighted = 1
    };

    /// What a region constructor does with an outline that may cross itself.
    enum IntersectionMode {
        /// The outline is taken as given; no self-intersection test is made.
        keepOutline = 0,
        /// The region is replaced by its own outer hull.
        useOuterHull = 1,
        /// The region is replaced by its own regularisation.
        useRegularized = 2
    };

    /// The common base of the library's own exceptions: catch it to catch any of them. It is
    /// never raised itself. Its error number and rethrow are those of the concrete classes.
    class CNTR_API Errors : public xcExceptionWithString {
    public:
        Errors(const Errors& other);
        Errors& operator=(const Errors& other);
        ~Errors() override;
        long errorNumber() const override = 0;
        void suicideAndRethrow() override = 0;

    protected:
        explicit Errors(const std::wstring& message);
        /// Record: a version byte (0), then the xcException record. The message of
        /// xcExceptionWithString is deliberately not stored, so a reloaded exception carries an
        /// empty message.
        void dispatchSerialize(xcArchive& ar) override;
        /// Throws xcArchive::UnknownVersion("xcContourDefs::Errors", 0) unless version is 0.
        void serialize_(xcArchive& ar, unsigned char version);
    };

    /// A contour with fewer than 2 vertices (a region with fewer than 3) was measured.
    /// Error number 0x10004680.
    class CNTR_API EmptyContour : public Errors {
        CNTR_CONTOUR_ERROR_MEMBERS(EmptyContour)
    };

    /// A region set without regions was measured. Error number 0x10004682.
    class CNTR_API EmptyRegionSet : public Errors {
        CNTR_CONTOUR_ERROR_MEMBERS(EmptyRegionSet)
    };

    /// An argument out of its range: a negative cached-vector size, an invalid DiameterMode, and
    /// the region operations' own refusals (with their messages). Error number 0x10004683.
    class CNTR_API BadParams : public Errors {
        CNTR_CONTOUR_ERROR_MEMBERS(BadParams)
    };

    /// isClosed(false) was called on a region. Error number 0x10004684.
    class CNTR_API RegionCannotBeSetOpen : public Errors {
        CNTR_CONTOUR_ERROR_MEMBERS(RegionCannotBeSetOpen)
    };
};

#undef CNTR_CONTOUR_ERROR_MEMBERS

/// The error numbers of the library's exceptions. 0x10004681 is deliberately unassigned: the
/// numbers are part of each error's stored and reported identity and never move.
namespace xnErrorNumber {
constexpr long ContourEmptyContour = 0x10004680;
constexpr long ContourEmptyRegionSet = 0x10004682;
constexpr long ContourBadParams = 0x10004683;
constexpr long ContourRegionCannotBeSetOpen = 0x10004684;
}  // namespace xnErrorNumber

#endif
