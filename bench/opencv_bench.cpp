// OpenCV for comparison, on one thread: the call that a user would make for the same purpose, in place where the
// library works in place. OpenCV makes byte masks instead of bit masks, saturates where the library's image addition
// wraps around, and needs two calls for moments and deviations. Its filters mirror the border in the same way and round
// to nearest.
#include <benchmark/benchmark.h>

#include <functional>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "pictures.hpp"

namespace orlix::bench {
namespace {

std::span<const int> sizes;

template <class T>
cv::Mat Image(int size) {
    const std::vector<T>& picture = Picture<T>(size);
    return cv::Mat(size, size, cv::DataType<T>::type, const_cast<T*>(picture.data())).clone();
}

template <class T>
void Register(const std::string& operation, const std::function<void(cv::Mat& image, cv::Mat& result)>& call) {
    for (const int size : sizes)
        benchmark::RegisterBenchmark(Name<T>(operation, size, "opencv").c_str(), [=](benchmark::State& state) {
            cv::Mat image = Image<T>(size);
            cv::Mat result;
            call(image, result);  // the result is already allocated
            for (auto _ : state) call(image, result);
            state.SetItemsProcessed(state.iterations() * int64_t{size} * size);
        });
}

template <class T>
void RegisterType() {
    const double level = std::is_same_v<T, uint16_t> ? 257.0 : 1.0;
    Register<T>("threshold", [=](cv::Mat& image, cv::Mat& mask) {
        cv::threshold(image, mask, 100 * level, 255, cv::THRESH_BINARY);
    });
    Register<T>("histogram", [=](cv::Mat& image, cv::Mat& counts) {
        const int channels[] = {0};
        const int bins[] = {256};
        const float range[] = {0.0f, static_cast<float>(256 * level)};
        const float* ranges[] = {range};
        cv::calcHist(&image, 1, channels, cv::Mat(), counts, 1, bins, ranges);
    });
    Register<T>("measure", [](cv::Mat& image, cv::Mat&) {
        cv::Scalar mean, deviation;
        cv::meanStdDev(image, mean, deviation);
        cv::Moments moments = cv::moments(image);
        benchmark::DoNotOptimize(moments);
        benchmark::DoNotOptimize(deviation);
    });
    Register<T>("invert", [=](cv::Mat& image, cv::Mat&) {
        if (std::is_same_v<T, float>)
            cv::subtract(cv::Scalar(255), image, image);
        else
            cv::bitwise_not(image, image);
    });
    Register<T>("add", [=](cv::Mat& image, cv::Mat&) { cv::add(image, cv::Scalar(3 * level), image); });
    Register<T>("divide", [](cv::Mat& image, cv::Mat&) { cv::divide(image, cv::Scalar(1.01), image); });
    Register<T>("fill", [=](cv::Mat& image, cv::Mat&) { image.setTo(cv::Scalar(77 * level)); });
    if (std::is_same_v<T, uint8_t>) {
        cv::Mat table(1, 256, CV_8U);
        for (int i = 0; i < 256; ++i) table.at<uint8_t>(i) = static_cast<uint8_t>((i * 167 + 13) % 256);
        Register<T>("lut", [=](cv::Mat& image, cv::Mat& result) { cv::LUT(image, table, result); });
    }
    Register<T>("create", [](cv::Mat& image, cv::Mat&) {
        cv::Mat created = cv::Mat::zeros(image.rows, image.cols, image.type());
        benchmark::DoNotOptimize(created.data);
    });
    Register<T>("copy", [](cv::Mat& image, cv::Mat& copy) { image.copyTo(copy); });
    Register<T>(std::string("plus ") + NameOf<T>(), [](cv::Mat& image, cv::Mat& sum) {
        if (sum.empty()) sum = image.clone();
        cv::add(sum, image, sum);
    });
}

// Kernels with which filter2D computes the library's filters.
template <class T>
void RegisterFilters() {
    const auto kernel = [](float corner, float side, float centre) {
        return cv::Mat_<float>({3, 3}, {corner, side, corner, side, centre, side, corner, side, corner});
    };
    const auto filter = [](const std::string& name, const cv::Mat& weights) {
        Register<T>(name, [=](cv::Mat& image, cv::Mat& result) { cv::filter2D(image, result, -1, weights); });
    };
    filter("Laplacian", kernel(1 / 6.0f, 4 / 6.0f, -20 / 6.0f));
    filter("SharpenLow", kernel(0, -0.5f, 3));
    filter("SharpenMedium", kernel(0, -1, 5));
    Register<T>("Gaussian3x3", [](cv::Mat& image, cv::Mat& result) { cv::GaussianBlur(image, result, {3, 3}, 0); });
    Register<T>("Gaussian5x5", [](cv::Mat& image, cv::Mat& result) { cv::GaussianBlur(image, result, {5, 5}, 0); });
    Register<T>("Median3x3", [](cv::Mat& image, cv::Mat& result) { cv::medianBlur(image, result, 3); });
    // Gradients in float; the magnitude is rounded to the type of the image.
    Register<T>("Sobel", [](cv::Mat& image, cv::Mat& result) {
        static cv::Mat dx, dy, magnitude;
        cv::Sobel(image, dx, CV_32F, 1, 0);
        cv::Sobel(image, dy, CV_32F, 0, 1);
        cv::magnitude(dx, dy, magnitude);
        magnitude.convertTo(result, image.type());
    });
    // Only the extremes, without the choice between them.
    for (const int halfSize : {1, 15}) {
        const cv::Mat square = cv::getStructuringElement(cv::MORPH_RECT, {2 * halfSize + 1, 2 * halfSize + 1});
        Register<T>("ExtremumSharpening " + std::to_string(halfSize), [=](cv::Mat& image, cv::Mat& result) {
            static cv::Mat least;
            cv::erode(image, least, square);
            cv::dilate(image, result, square);
        });
    }
}

template <class T, class From>
void RegisterConversion() {
    for (const int size : sizes)
        benchmark::RegisterBenchmark(Name<T>(std::string("cast from ") + NameOf<From>(), size, "opencv").c_str(),
                                     [=](benchmark::State& state) {
                                         const cv::Mat image = Image<From>(size);
                                         cv::Mat result(size, size, cv::DataType<T>::type);
                                         for (auto _ : state) image.convertTo(result, cv::DataType<T>::type);
                                         state.SetItemsProcessed(state.iterations() * int64_t{size} * size);
                                     });
}

template <class T>
void RegisterConversions() {
    RegisterConversion<T, uint8_t>();
    RegisterConversion<T, uint16_t>();
    RegisterConversion<T, float>();
}

}  // namespace

void RegisterOpenCv(std::span<const int> all) {
    sizes = all;
    cv::setNumThreads(1);
    RegisterType<uint8_t>();
    RegisterFilters<uint8_t>();
    RegisterType<uint16_t>();
    RegisterFilters<uint16_t>();
    RegisterType<float>();
    RegisterFilters<float>();
    RegisterConversions<uint8_t>();
    RegisterConversions<uint16_t>();
    RegisterConversions<float>();
}

}  // namespace orlix::bench
