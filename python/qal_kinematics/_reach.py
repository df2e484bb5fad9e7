"""Reach studies: in this process, or by the workers of a Dask cluster."""

from __future__ import annotations

from dataclasses import dataclass
from importlib import import_module
from typing import TYPE_CHECKING, Any

import numpy as np

from . import _core

if TYPE_CHECKING:
    import numpy.typing as npt

    from ._core import _Floats, _Path, _Progress

    _Counts = npt.NDArray[np.uint32]

# Of a shard, at the most: some seconds of work of a closed form.
_SHARD_POSES = 10_000_000
# For each thread of a cluster, at the least: the last ones to work are alone for a fraction of the time.
_SHARDS_PER_THREAD = 4


@dataclass(frozen=True, eq=False)
class ReachResult:
    """What a study says of each of its cells: of `reach`.

    Arrays of cells have the names of the datasets in a file of `qal reach`, and shape (z, y, x): of
    the cell that is i steps along x, j along y and k along z, ``margin[k, j, i]``. Where nothing is
    reached, the orientation is -1, and margin, joints and singular value are NaN.
    """

    #: The arm.
    arm: _core.Arm
    #: The study.
    study: _core.ReachStudy
    #: (z, y, x) array: how many directions are reached.
    reached_directions: _Counts
    #: (z, y, x) array: admissible solutions of all orientations together.
    solutions: _Counts
    #: (z, y, x) array: how far the best solution's joints stay from their limits [rad]; of a
    #: placement those of the reached pose that has the least, as are orientation and joints.
    margin: _Floats
    #: (z, y, x) array: of the Jacobian in metres and radians, at the best solution; of a placement
    #: the smallest of all reached poses' best solutions.
    smallest_singular_value: _Floats
    #: (z, y, x) array: the best solution's orientation, as a row of `orientations`.
    orientation: npt.NDArray[np.int32]
    #: (z, y, x, 6) array: the best solution [rad], joint 1 first.
    joints: _Floats

    @property
    def reached_share(self) -> _Floats:
        """(z, y, x) array: share of the directions that are reached."""
        return self.reached_directions / self.study.direction_count

    @property
    def orientations(self) -> _Floats:
        """`ReachStudy.orientations`: what is tried in each cell, as quaternions w x y z."""
        return self.study.orientations

    @property
    def centres(self) -> _Floats:
        """(z, y, x, 3) array: the cells' centres [m, base frame]."""
        nx, ny, nz = self.study.grid_count
        k, j, i = np.indices((nz, ny, nx))
        return self.study.grid_first + np.stack([i, j, k], axis=-1) * self.study.step

    def save(self, path: _Path) -> None:
        """Writes an HDF5 file, whole or not at all: the bytes that `qal reach` writes of the study.

        Parameters
        ----------
        path : str or os.PathLike
            A file that is there already is replaced.
        """
        _core.save_reach(path, self.arm, self.study, {name: getattr(self, name) for name in _ARRAYS})

    def __repr__(self) -> str:
        reached = np.count_nonzero(self.reached_directions)
        return f"<ReachResult: {reached} of {self.study.cell_count} cells reached>"


_ARRAYS = [name for name in ReachResult.__annotations__ if name not in ("arm", "study")]


def reach(
    study: _core.ReachStudy,
    arm: _core.Arm,
    *,
    threads: int = 0,
    client: Any = None,
    shards: int = 0,
    progress: _Progress | None = None,
) -> ReachResult:
    """From which directions the tool reaches the cells of a box; from which positions of its base the
    arm reaches poses.

    Each cell's answer is that of `Arm.inverse` for each of its poses, and the same bits wherever
    it is solved.

    Parameters
    ----------
    study : ReachStudy
        What is studied.
    arm : Arm
        With the tool that `Arm.with_tool` gives it.
    threads : int
        Of this process; 0: as many as there are cores.
    client : dask.distributed.Client, optional
        A cluster whose workers do it instead, in shards of the cells, each on one thread of a worker.
        Shards of workers that die are done by others.
    shards : int
        Into how many the cells are cut for a cluster; 0: so many that each has at most 10 million
        poses, and that there are four for each thread.
    progress : callable, optional
        Called now and then with the number of poses done since the last call; all are
        `ReachStudy.pose_count`.

    Returns
    -------
    ReachResult

    Raises
    ------
    SolverError
        Of a solver that fails; it says nothing of the reach.
    """
    spins = 1 if study.poses is not None else study.spins
    told = None if progress is None else lambda directions: progress(directions * spins)
    if client is None:
        arrays = _core.reach_cells(arm, study, 0, study.cell_count, threads, told)
    elif threads:
        raise ValueError("threads: of this process; those of a worker are its own (dask-worker --nthreads)")
    else:
        arrays = _by_workers(arm, study, client, shards, told)
    nx, ny, nz = study.grid_count
    shaped = {name: array.reshape(nz, ny, nx, *array.shape[1:]) for name, array in arrays.items()}
    for array in shaped.values():
        array.flags.writeable = False
    return ReachResult(arm, study, **shaped)


def _shard(first: int, last: int, arm: _core.Arm, study: _core.ReachStudy) -> dict[str, Any]:
    """What a worker does."""
    return _core.reach_cells(arm, study, first, last, 1, None)


def _by_workers(
    arm: _core.Arm, study: _core.ReachStudy, client: Any, shards: int, told: _Progress | None
) -> dict[str, Any]:
    try:
        distributed: Any = import_module("distributed")
    except ImportError:
        raise ImportError("client= needs Dask: sudo apt-get install python3-distributed, or "
                          "pip install distributed") from None
    if not isinstance(client, distributed.Client) or client.asynchronous:
        raise TypeError(f"client: a dask.distributed.Client is expected, and no asynchronous one, not {client!r}")
    _expect_same_version(client)
    if shards < 1:
        shards = max(-(-study.pose_count // _SHARD_POSES), _SHARDS_PER_THREAD * sum(client.nthreads().values()))
    shards = min(shards, study.cell_count)
    edges = [study.cell_count * i // shards for i in range(shards + 1)]
    futures = client.map(_shard, edges[:-1], edges[1:], arm=arm, study=study, pure=False)
    place = {future.key: slice(*span) for future, span in zip(futures, zip(edges, edges[1:]))}
    arrays: dict[str, Any] = {}
    try:
        for future, part in distributed.as_completed(futures, loop=client.loop, with_results=True):
            cells = place[future.key]
            for name, column in part.items():
                if name not in arrays:
                    arrays[name] = np.empty((study.cell_count, *column.shape[1:]), column.dtype)
                arrays[name][cells] = column
            future.release()  # the worker need not keep it
            if told is not None:
                told((cells.stop - cells.start) * study.direction_count)
    except BaseException:
        client.cancel(futures)
        raise
    return arrays


def _expect_same_version(client: Any) -> None:
    """Other versions may have other bits."""
    workers = client.get_versions(packages=["qal_kinematics"])["workers"]
    for address, versions in workers.items():
        found = versions["packages"].get("qal_kinematics")
        if found != _core.__version__:
            raise RuntimeError(f"worker {address} has {f'qal_kinematics {found}' if found else 'no qal_kinematics'}, "
                               f"this process {_core.__version__}; install one version everywhere")
