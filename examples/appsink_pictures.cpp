// appsink_pictures PIPELINE   runs a GStreamer pipeline whose appsink, called "sink", gets H.264, and prints the
// pictures in the order in which they are shown, with the times that the pipeline says. For instance 'filesrc
// location=a.mp4 ! qtdemux ! h264parse config-interval=-1 ! video/x-h264,stream-format=byte-stream ! appsink name=sink'
#include <orv-utils-v4/h264_syntax.h>

#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include <cstdio>
#include <iostream>
#include <memory>

using namespace orv_utils_v4::h264;

struct printer : picture_sink {
    void output(const picture& p) override
    {
        std::printf("%llu: picture %llu, %llu bytes%s", static_cast<unsigned long long>(p.output_number),
                    static_cast<unsigned long long>(p.number), static_cast<unsigned long long>(p.end - p.offset),
                    p.idr ? ", IDR" : "");
        if (const exact_time time = p.times.presentation_stamp; time)
            std::printf(", at %.3f s", static_cast<double>(time.numerator) / static_cast<double>(time.denominator));
        std::printf("\n");
    }
};

// One buffer, of any size and cut anywhere: the stream goes on in the next.
static void push(picture_reader& reader, GstBuffer* buffer, printer& prints)
{
    timestamp stamp;
    stamp.clock = 1000000000; // nanoseconds
    stamp.presentation = static_cast<std::int64_t>(GST_BUFFER_PTS(buffer));
    GstMapInfo bytes;
    if (!gst_buffer_map(buffer, &bytes, GST_MAP_READ))
        return;
    reader.push(bytes.data, bytes.size, prints, {GST_BUFFER_PTS_IS_VALID(buffer) ? &stamp : nullptr});
    gst_buffer_unmap(buffer, &bytes);
}

// The pipeline ended because of an error, which is told.
static bool failed(GstElement* pipeline)
{
    const std::unique_ptr<GstBus, decltype(&gst_object_unref)> bus(gst_element_get_bus(pipeline), gst_object_unref);
    GstMessage* const message = gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR);
    if (message == nullptr)
        return false;
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    std::cerr << error->message << '\n';
    g_error_free(error);
    gst_message_unref(message);
    return true;
}

int main(int argc, char** argv)
{
    gst_init(&argc, &argv);
    GstElement* const pipeline = argc == 2 ? gst_parse_launch(argv[1], nullptr) : nullptr;
    GstElement* const sink = pipeline != nullptr ? gst_bin_get_by_name(GST_BIN(pipeline), "sink") : nullptr;
    if (sink == nullptr)
        return 2;
    g_object_set(sink, "sync", FALSE, nullptr); // as fast as it goes
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    printer prints;
    picture_reader reader(framing::annex_b);
    bool broken = false;
    while (!broken && gst_app_sink_is_eos(GST_APP_SINK(sink)) == FALSE) {
        if (GstSample* const sample = gst_app_sink_try_pull_sample(GST_APP_SINK(sink), GST_SECOND / 10)) {
            push(reader, gst_sample_get_buffer(sample), prints);
            gst_sample_unref(sample);
        } else {
            broken = failed(pipeline);
        }
    }
    reader.flush(prints);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(sink);
    gst_object_unref(pipeline);
    return broken ? 1 : 0;
}
