"""Stationing on a Dask cluster: two worker processes generate a few million
points partition by partition (nothing of the point set is held in the
client) and station them; the result equals that of one call in this process
exactly. Written to CSV (a smaller set: formatting doubles dominates the time)
and read back, the files hold exactly the same values."""

import glob
import os

import numpy as np
import pytest

import zelmath
import zelmath.dask

dd = pytest.importorskip("dask.dataframe")
distributed = pytest.importorskip("dask.distributed")
pd = pytest.importorskip("pandas")

# A few million points in partitions; fewer for the round trip through CSV.
POINTS = 2_000_000
PARTITIONS = 8
CSV_POINTS = 200_000
WORKERS = 2
# Points up to this far (metres) off the axis, and some beyond its ends.
HALF_WIDTH = 8.0
BEYOND_ENDS = 30.0


def generate(alignment, n, seed):
    """n points around the axis (with a few bad ones), the same for the same seed."""
    rng = np.random.default_rng(seed)
    s = rng.uniform(alignment.start_station - BEYOND_ENDS, alignment.end_station + BEYOND_ENDS, n)
    p = alignment.point_at(np.clip(s, alignment.start_station, alignment.end_station))
    off = rng.uniform(-HALF_WIDTH, HALF_WIDTH, n)
    east = p.east + off * np.cos(p.azimuth)
    north = p.north - off * np.sin(p.azimuth)
    height = p.design_height + rng.normal(0.0, 0.01, n)
    # A few bad points: they get a status on the cluster as well.
    east[::100_003] = np.nan
    ids = np.arange(n, dtype=np.int64) + seed * n
    return pd.DataFrame({"id": ids, "east": east, "north": north, "height": height})


@pytest.fixture(scope="module")
def cluster():
    with distributed.LocalCluster(n_workers=WORKERS, threads_per_worker=1, processes=True,
                                  dashboard_address=":0", silence_logs=40) as c:
        with distributed.Client(c) as client:
            yield client


def distributed_points(alignment, points, partitions):
    """A Dask DataFrame whose workers generate their partitions themselves
    (from a seed), as they would read them from the files of a large scan; and
    the same points generated here."""
    rows = points // partitions
    seeds = list(range(partitions))

    def partition(seed, alignment):
        return generate(alignment, rows, seed)

    ddf = dd.from_map(partition, seeds, alignment=alignment, meta=generate(alignment, 0, 0))
    local = pd.concat([generate(alignment, rows, seed) for seed in seeds], ignore_index=True)
    return ddf, local


def single_process(alignment, points):
    return alignment.station(points["east"].to_numpy(), points["north"].to_numpy(), points["height"].to_numpy())


def test_cluster_result_equals_the_single_process_result(sample, cluster):
    ddf, points = distributed_points(sample, POINTS, PARTITIONS)
    back = zelmath.dask.station(ddf, sample, height="height").compute()
    single = single_process(sample, points)
    assert len(back) == POINTS
    np.testing.assert_array_equal(back["id"].to_numpy(), points["id"].to_numpy())
    for col in single.keys():
        np.testing.assert_array_equal(back[col].to_numpy(), single[col], err_msg=col)
    statuses = set(back["status"].unique())
    assert {zelmath.Status.ON, zelmath.Status.BEFORE_START, zelmath.Status.BEYOND_END,
            zelmath.Status.INVALID} <= statuses


def test_cluster_writes_csv_with_the_same_values(tmp_path, sample, cluster):
    ddf, points = distributed_points(sample, CSV_POINTS, PARTITIONS)
    out = str(tmp_path / "stationed-*.csv")
    zelmath.dask.station(ddf, sample, height="height").to_csv(out, index=False)
    files = sorted(glob.glob(out), key=lambda f: int(os.path.basename(f).split("-")[1].split(".")[0]))
    assert len(files) == PARTITIONS
    # pandas writes the shortest round-trip form of each double; read back exactly.
    back = pd.concat([pd.read_csv(f, float_precision="round_trip") for f in files], ignore_index=True)
    single = single_process(sample, points)
    assert len(back) == CSV_POINTS
    np.testing.assert_array_equal(back["id"].to_numpy(), points["id"].to_numpy())
    for col in single.keys():
        np.testing.assert_array_equal(back[col].to_numpy(), single[col], err_msg=col)


def test_the_alignment_travels_to_the_workers(sample, cluster):
    # Each worker rebuilds the alignment from its pickled definition.
    def name_and_end(a):
        import os as _os

        return a.name, a.end_station, _os.getpid()

    futures = [cluster.submit(name_and_end, sample, pure=False, workers=[w])
               for w in cluster.scheduler_info()["workers"]]
    answers = cluster.gather(futures)
    assert {(n, e) for n, e, _ in answers} == {(sample.name, sample.end_station)}
    assert len({pid for _, _, pid in answers}) == WORKERS


def test_parquet_where_available(tmp_path, sample, cluster):
    pytest.importorskip("pyarrow")
    points = generate(sample, 100_000, 0)
    ddf = dd.from_pandas(points, npartitions=4)
    zelmath.dask.station(ddf, sample, height="height").to_parquet(str(tmp_path / "out.parquet"))
    back = pd.read_parquet(tmp_path / "out.parquet")
    single = sample.station(points["east"].to_numpy(), points["north"].to_numpy(), points["height"].to_numpy())
    np.testing.assert_array_equal(back["station"].to_numpy(), single.station)
